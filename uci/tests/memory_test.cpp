// Memory that ends in what reads and edits.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "memory_folder.h"

namespace {

TEST_F(Memory, EndsInALoad) { break_all(nothing, load); }

TEST_F(Memory, EndsInALookup) {
  break_all(nothing, [](uci_context* context) {
    char tuple[] = "pkg.@thing[-1].a";
    uci_ptr ptr{};
    return uci_lookup_ptr(context, &ptr, tuple, true);
  });
}

TEST_F(Memory, EndsInAnEdit) {
  const std::vector<Operation> edits{
      edit<uci_set>("s", "a", kLong),
      edit<uci_set>("s", "new", kLong),
      edit<uci_set>("s", "l", kLong),
      edit<uci_set>("s", nullptr, "a-type-that-is-longer-than-what-a-string-keeps-in-itself"),
      edit<uci_set>("a_section_name_longer_than_what_a_string_keeps", nullptr, "thing"),
      edit<uci_add_list>("s", "a", kLong),
      edit<uci_add_list>("s", "l", kLong),
      edit<uci_add_list>("s", "new", kLong),
      edit<uci_del_list>("s", "l", "x"),
      edit<uci_delete>("s", nullptr, nullptr),
      edit<uci_delete>("s", "a", nullptr),
      edit<uci_delete>("s", "l", "1"),
      edit<uci_rename>("s", nullptr, "a_section_name_longer_than_what_a_string_keeps"),
      edit<uci_rename>("s", "a", "an_option_name_longer_than_what_a_string_keeps"),
      [](uci_context* context) {
        uci_section* section = nullptr;
        return uci_add_section(context, loaded(context), "thing", &section);
      },
      [](uci_context* context) {
        uci_package* package = loaded(context);
        return uci_reorder_section(context, uci_to_section(list_to_element(package->sections.next)), 1);
      },
  };
  for (const Operation& edit : edits) break_all(load, edit);
}

TEST_F(Memory, ThatEndsInAnEditChangesNothing) {
  for (int at = 0; at < 8; ++at) {
    prepare();
    ASSERT_EQ(load(context_.get()), UCI_OK);
    fail_allocation(at, Failing::kOnce);
    uci_ptr ptr = pointer(context_.get(), "s", "a", kLong);
    const int code = uci_add_list(context_.get(), &ptr);
    end_failing();
    if (code == UCI_OK) break;
    uci_package* package = loaded(context_.get());
    EXPECT_TRUE(uci_list_empty(&package->delta)) << at;
    EXPECT_EQ(value("pkg.s.a"), "a value that no short string holds") << at;
  }
}

TEST_F(Memory, EndsInAContextAndItsFolders) {
  break_all(nothing, [](uci_context*) {
    uci_context* context = uci_alloc_context();
    if (context == nullptr) return int{UCI_ERR_MEM};
    uci_free_context(context);
    return int{UCI_OK};
  });
  break_all(nothing, [](uci_context* context) { return uci_set_savedir(context, kLong); });
  break_all(nothing, [](uci_context* context) { return uci_set_confdir(context, context->confdir); });
  break_all(nothing, [](uci_context* context) { return uci_set_conf2dir(context, kLong); });
  break_all(nothing, [](uci_context* context) {
    const int code = uci_add_delta_path(context, kLong);
    return code == UCI_ERR_DUPLICATE ? int{UCI_OK} : code;
  });
  break_all(nothing, [](uci_context* context) {
    char** names = nullptr;
    const int code = uci_list_configs(context, &names);
    std::free(names);
    return code;
  });
}

TEST_F(Memory, EndsInAnErrorText) {
  put("conf/bad", "config t s\n\toption a-b 1\n");
  EXPECT_EQ(uci_load(context_.get(), "bad", nullptr), UCI_ERR_PARSE);
  for (int at = 0; at < 8; ++at) {
    fail_allocation(at, Failing::kFromThenOn);
    char* text = nullptr;
    uci_get_errorstr(context_.get(), &text, kLong);
    uci_perror(context_.get(), kLong);
    end_failing();
    std::free(text);
  }
}

TEST_F(Memory, EndsInABatchLine) {
  break_all(nothing, [](uci_context* context) {
    char text[] = "set 'pkg.s.a=a text that is longer than what a string keeps in itself'\n";
    FILE* stream = fmemopen(text, sizeof(text) - 1, "r");
    char* position = nullptr;
    char* word = nullptr;
    int code = uci_parse_argument(context, stream, &position, &word);
    if (code == UCI_OK) code = uci_parse_argument(context, stream, &position, &word);
    fclose(stream);
    return code;
  });
}

}  // namespace
