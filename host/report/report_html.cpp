// Pieces of HTML that the sections of the report are made of.
#include "report/report_html.h"

#include "report/report_words.h"

namespace kxhost {

std::string element(std::string_view name, const std::string& content, std::string_view attributes)
{
    std::string html = "<" + std::string(name);
    if (!attributes.empty()) {
        html += " " + std::string(attributes);
    }
    return html + ">" + content + "</" + std::string(name) + ">";
}

std::string dataElement(std::string_view id, std::uint64_t number)
{
    return element("data", grouped(number),
                   "id=\"" + std::string(id) + "\" value=\"" + std::to_string(number) + "\"");
}

std::string section(std::string_view id, std::string_view heading, const std::string& content)
{
    return element("section", "\n" + element("h2", std::string(heading)) + "\n" + content,
                   "id=\"" + std::string(id) + "\"") +
           "\n";
}

std::string figure(std::string_view title, const std::string& words, const std::string& content)
{
    const std::string caption =
        element("figcaption", element("strong", std::string(title)) + " " + words);
    return element("figure", caption + "\n" + content) + "\n";
}

std::string table(const std::vector<std::string>& head,
                  const std::vector<std::vector<std::string>>& rows, bool numbers)
{
    std::string cells;
    for (const std::string& each : head) {
        cells += element("th", each, "scope=\"col\"");
    }
    std::string html = element("thead", element("tr", cells));
    std::string body;
    for (const std::vector<std::string>& row : rows) {
        cells.clear();
        for (std::size_t i = 0; i < row.size(); ++i) {
            cells += i == 0 ? element("th", row[i], "scope=\"row\"") : element("td", row[i]);
        }
        body += element("tr", cells) + "\n";
    }
    html += element("tbody", body);
    return element("div", element("table", html, numbers ? "class=\"numbers\"" : ""),
                   "class=\"wide\"");
}

std::string foldedAway(const std::string& summary, const std::string& content)
{
    return element("details", element("summary", summary) + content);
}

} // namespace kxhost
