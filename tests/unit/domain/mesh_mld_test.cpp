// Which MLD carries an access point, in every mesh configuration.
#include "domain/mesh_mld.h"

#include <map>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace {

constexpr int kModes[] = {-1, 0, 1, 2, 3, 4, 100};
constexpr const char* kAllIfnames[] = {"ath0",  "ath1",  "ath2",  "ath01", "ath11", "ath21", "ath02", "ath12", "ath22",
                                       "ath03", "ath13", "ath23", "ath04", "ath14", "ath24", "ath05", "ath15", "ath25"};

// "brand role onboarded mode", brand "x" for 1 and 2, onboarded "*" for any; then the pairs.
const std::map<std::string, std::string> kExpected{
    {"0 1 * 1", "ath0=mld1 ath1=mld1 ath2=mld2 ath01=mld4 ath11=mld5 ath21=mld6"},
    {"0 1 * 2", "ath0=mld2 ath1=mld1 ath2=mld1 ath01=mld4 ath11=mld5 ath21=mld6"},
    {"0 2 * 1", "ath0=mld2 ath1=mld2 ath2=mld4"},
    {"0 2 * 2", "ath0=mld4 ath1=mld2 ath2=mld2"},
    {"x 1 * 0", "ath0=mld3 ath1=mld1 ath2=mld5 ath01=mld7 ath11=mld9 ath21=mld11 ath05=mld2 ath15=mld2 ath25=mld2"},
    {"x 1 * 1",
     "ath0=mld3 ath1=mld1 ath2=mld4 ath01=mld6 ath11=mld8 ath21=mld10 ath04=mld7 ath14=mld9 ath24=mld11 ath05=mld2 "
     "ath15=mld2 ath25=mld2"},
    {"x 1 * 2",
     "ath0=mld3 ath1=mld1 ath2=mld5 ath01=mld6 ath11=mld8 ath21=mld10 ath04=mld7 ath14=mld9 ath24=mld11 ath05=mld2 "
     "ath15=mld2 ath25=mld2"},
    {"x 2 0 0", "ath0=mld6 ath1=mld3 ath2=mld8 ath05=mld5 ath15=mld5 ath25=mld5"},
    {"x 2 0 1", "ath0=mld5 ath1=mld2 ath2=mld6 ath05=mld4 ath15=mld4 ath25=mld4"},
    {"x 2 0 2", "ath0=mld5 ath1=mld2 ath2=mld7 ath05=mld4 ath15=mld4 ath25=mld4"},
    {"x 2 1 0", "ath0=mld5 ath1=mld3 ath2=mld8 ath05=mld7 ath15=mld7 ath25=mld7"},
    {"x 2 1 1", "ath0=mld3 ath1=mld2 ath2=mld6 ath05=mld5 ath15=mld5 ath25=mld5"},
    {"x 2 1 2", "ath0=mld4 ath1=mld2 ath2=mld7 ath05=mld6 ath15=mld6 ath25=mld6"},
};

// The expected MLD, or "".
std::string expected_mld(int brand, int role, int mode, int onboarded, const std::string& ifname) {
  const std::string head = (brand == 0 ? "0 " : "x ") + std::to_string(role) + " ";
  for (const std::string& state : {std::string("*"), std::to_string(onboarded)}) {
    const auto row = kExpected.find(head + state + " " + std::to_string(mode));
    if (row == kExpected.end()) continue;
    const std::string pairs = " " + row->second + " ";
    const std::size_t at = pairs.find(" " + ifname + "=");
    if (at == std::string::npos) return "";
    const std::size_t begin = at + ifname.size() + 2;
    return pairs.substr(begin, pairs.find(' ', begin) - begin);
  }
  return "";
}

std::string found_mld(int brand, int role, int mode, int onboarded, const char* ifname) {
  const mesh_mld::Row* row = mesh_mld::find_row(brand, role, mode, onboarded);
  if (row == nullptr) return "";
  const char* mld = mesh_mld::find_mld(*row, ifname);
  return mld == nullptr ? "" : mld;
}

TEST(MeshMld, EveryCombinationHasItsList) {
  std::size_t rows = 0;
  for (int brand = 0; brand < 3; ++brand)
    for (int role = 0; role < 3; ++role)
      for (const int mode : kModes)
        for (int onboarded = 0; onboarded < 2; ++onboarded) {
          rows += mesh_mld::find_row(brand, role, mode, onboarded) != nullptr ? 1 : 0;
          for (const char* ifname : kAllIfnames) {
            EXPECT_EQ(found_mld(brand, role, mode, onboarded, ifname),
                      expected_mld(brand, role, mode, onboarded, ifname))
                << "brand " << brand << " role " << role << " mode " << mode << " onboarded " << onboarded << ifname;
          }
        }
  EXPECT_EQ(rows, 4U * 2 + 2 * (3 * 2 + 6));
}

}  // namespace
