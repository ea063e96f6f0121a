// HTML from forms with places for values.
#ifndef ZUQEL_TOOLS_REPORT_HTML_H_
#define ZUQEL_TOOLS_REPORT_HTML_H_

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zuqel::tools {

// Markup. Text becomes it only by Escape, so none can be forgotten.
class Html {
 public:
  Html() = default;

  Html& operator+=(const Html& more) {
    markup_ += more.markup_;
    return *this;
  }
  [[nodiscard]] const std::string& markup() const { return markup_; }

 private:
  friend Html Escape(std::string_view text);
  friend Html Fill(
      std::string_view form,
      const std::vector<std::pair<std::string_view, Html>>& values);
  explicit Html(std::string markup) : markup_(std::move(markup)) {}

  std::string markup_;
};

// UTF-8 for elements and for attributes in quotes of either kind.
Html Escape(std::string_view text);

// The form, which the program brings along, with the value of that name in each
// place {{name}}. Throws WorkError if there is none.
Html Fill(std::string_view form,
          const std::vector<std::pair<std::string_view, Html>>& values = {});

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REPORT_HTML_H_
