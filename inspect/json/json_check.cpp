#include "inspect/json/json_check.hpp"

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "inspect/bytes/failure.hpp"

namespace inspect {
namespace {

using Json = nlohmann::ordered_json;

constexpr size_t deepest = 64;
constexpr size_t mostMembers = 100;  // of an object
constexpr size_t mostValues = 1'000'000;

[[noreturn]] void fail(const std::string& text) {
  throw Failure(Cause::BadInput, text);
}

// "syntax error" from "[json.exception.parse_error.101] parse error at line 1, column 2: syntax
// error".
std::string reasonOf(std::string_view text) {
  constexpr size_t longest = 200;
  text.remove_prefix(text.find("] ") + 2);
  if (text.starts_with("parse error")) {
    text.remove_prefix(text.find(": ") + 2);
  }
  return std::string(text.substr(0, longest)) + (text.size() > longest ? "..." : "");
}

// Keeps only the names of the open objects' members, and where it is.
class Check final : public nlohmann::json_sax<Json> {
 public:
  bool null() override { return count(); }
  bool boolean(bool /*value*/) override { return count(); }
  bool number_integer(number_integer_t /*value*/) override { return count(); }
  bool number_unsigned(number_unsigned_t /*value*/) override { return count(); }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return count(); }
  bool string(string_t& /*value*/) override { return count(); }
  bool binary(binary_t& /*value*/) override { return count(); }
  bool start_object(std::size_t /*size*/) override { return open(false); }
  bool end_object() override { return close(); }
  bool start_array(std::size_t /*size*/) override { return open(true); }
  bool end_array() override { return close(); }

  bool key(string_t& name) override {
    Level& level = levels_.back();
    level.member = name;
    if (!level.members.insert(name).second) {
      fail("duplicate member '" + path() + "'");
    }
    if (level.members.size() > mostMembers) {
      fail("an object with more than " + std::to_string(mostMembers) + " members");
    }
    return true;
  }

  bool parse_error(std::size_t position, const std::string& /*token*/,
                   const nlohmann::detail::exception& error) override {
    fail("invalid JSON at byte " + std::to_string(position) + ": " + reasonOf(error.what()));
  }

  [[nodiscard]] size_t values() const { return values_; }

 private:
  // An open object or array.
  struct Level {
    bool isArray;
    size_t items = 0;    // begun
    std::string member;  // the last
    std::set<std::string> members;
  };

  [[nodiscard]] std::string path() const {
    std::string text;
    for (const Level& level : levels_) {
      if (level.isArray) {
        text.append("[").append(std::to_string(level.items - 1)).append("]");
      } else {
        text.append(text.empty() ? "" : ".").append(level.member);
      }
    }
    return text;
  }

  bool count() {
    if (!levels_.empty()) {
      ++levels_.back().items;
    }
    if (++values_ > mostValues) {
      fail("more than " + std::to_string(mostValues) + " values");
    }
    return true;
  }

  bool open(bool isArray) {
    count();
    levels_.push_back({.isArray = isArray, .member = "", .members = {}});
    if (levels_.size() > deepest) {
      fail("more than " + std::to_string(deepest) + " levels of nesting");
    }
    return true;
  }

  bool close() {
    levels_.pop_back();
    return true;
  }

  std::vector<Level> levels_;
  size_t values_ = 0;
};

}  // namespace

size_t checkJson(std::string_view text) {
  // The parser takes it for the end of the text.
  if (const size_t zero = text.find('\0'); zero != std::string_view::npos) {
    fail("not JSON: byte " + std::to_string(zero) + " is zero");
  }
  Check check;
  Json::sax_parse(text, &check);
  return check.values();
}

}  // namespace inspect
