// How this unit is used: a router, an access point, or a repeater.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace unit {

// What system.@system[0].op_mode may say.
inline constexpr const char* kRouterMode = "router";
inline constexpr const char* kAccessPointMode = "ap";
inline constexpr const char* kRepeaterMode = "re";

// A stored mode, which may be any text: one that is none of the three above answers every question with no.
class OperatingMode {
 public:
  explicit OperatingMode(std::string text) : text_(std::move(text)) {}

  [[nodiscard]] bool is_router() const { return text_ == kRouterMode; }
  [[nodiscard]] bool is_access_point() const { return text_ == kAccessPointMode; }
  [[nodiscard]] bool is_repeater() const { return text_ == kRepeaterMode; }
  // It is a client of another router, and has its addresses from there.
  [[nodiscard]] bool is_client() const { return is_access_point() || is_repeater(); }
  // The text begins as a repeater's: what the wireless details go by.
  [[nodiscard]] bool begins_as_repeater() const { return text_.starts_with(kRepeaterMode); }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  std::string text_;
};

// The stored mode, 31 bytes of it at most; nullopt when there is none. Reads UCI afresh on every call.
std::optional<OperatingMode> operating_mode();
// The same, with a mode of no text where there is none.
OperatingMode operating_mode_or_none();

// `mode`: one of the three above. False on failure.
bool set_operating_mode(const char* mode);

}  // namespace unit
