#include "map/page_text.h"

namespace trovisk {

std::string HtmlText(std::string_view text) {
  std::string html;
  html.reserve(text.size());
  for (const char character : text) {
    switch (character) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += character;
    }
  }
  return html;
}

std::string HtmlNumber(u64 number) {
  constexpr std::size_t kGroup = 3;
  std::string digits = std::to_string(number);
  if (digits.size() <= kGroup + 1) return digits;
  const std::size_t first = (digits.size() - 1) % kGroup + 1;
  std::string html = digits.substr(0, first);
  for (std::size_t at = first; at < digits.size(); at += kGroup)
    html += "<span class=\"group\">" + digits.substr(at, kGroup) + "</span>";
  return html;
}

std::string HtmlCell(std::string_view content, std::string_view name) {
  std::string html = "<td";
  if (!name.empty()) html.append(" class=\"").append(name).append("\"");
  return html.append(">").append(content).append("</td>");
}

std::string HtmlPlace(u64 sector) {
  return "<a href=\"#sector-" + std::to_string(sector) + "\">" + HtmlNumber(sector) + "</a>";
}

std::string HtmlHead(std::initializer_list<HtmlColumn> columns) {
  std::string html = "<thead><tr>";
  for (const HtmlColumn& column : columns) {
    html.append(column.number ? "<th scope=\"col\" class=\"number\">" : "<th scope=\"col\">");
    html.append(column.name).append("</th>");
  }
  return html + "</tr></thead>\n";
}

std::string HtmlFacts(std::initializer_list<HtmlFact> facts) {
  std::string html = "<dl class=\"facts-list\">\n";
  for (const HtmlFact& fact : facts) {
    if (fact.value.empty()) continue;
    html.append("<div><dt>").append(fact.label).append("</dt><dd>").append(fact.value);
    html.append("</dd></div>\n");
  }
  return html + "</dl>\n";
}

std::string HtmlCutLine(std::size_t left) {
  return "<p class=\"cut\">" + std::to_string(left) + " more are not shown.</p>\n";
}

}  // namespace trovisk
