// HTML from forms with places for values.
#include "report/html.h"

#include <algorithm>

#include "tool_error.h"

namespace zuqel::tools {

Html Escape(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += c;
    }
  }
  return Html(std::move(escaped));
}

Html Fill(std::string_view form,
          const std::vector<std::pair<std::string_view, Html>>& values) {
  std::string filled;
  while (true) {
    const size_t start = form.find("{{");
    filled += form.substr(0, start);
    if (start == std::string_view::npos) return Html(std::move(filled));
    const size_t end = form.find("}}", start);
    const std::string_view name = form.substr(start + 2, end - start - 2);
    const auto value =
        std::find_if(values.begin(), values.end(),
                     [&](const auto& named) { return named.first == name; });
    if (end == std::string_view::npos || value == values.end()) {
      throw WorkError("the page has no value for " + std::string(name));
    }
    filled += value->second.markup();
    form.remove_prefix(end + 2);
  }
}

}  // namespace zuqel::tools
