#include "replay/Table.h"

#include <fstream>
#include <sstream>

namespace sim {

namespace {

std::string trimmed(const std::string &text)
{
    const char *const blanks = " \t\r";
    const auto begin = text.find_first_not_of(blanks);
    if (begin == std::string::npos)
        return "";
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::vector<std::string> fieldsOf(const std::string &line)
{
    std::vector<std::string> fields;
    if (line.find(',') == std::string::npos) {
        std::stringstream words(line);
        for (std::string word; words >> word;)
            fields.push_back(word);
        return fields;
    }
    std::size_t begin = 0;
    for (std::size_t comma = 0; comma != std::string::npos; begin = comma + 1) {
        comma = line.find(',', begin);
        fields.push_back(trimmed(line.substr(begin, comma - begin)));
    }
    return fields;
}

} // namespace

bool Table::read(const std::filesystem::path &path, Table &table)
{
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    if (!file)
        return false;
    table = parse(text.str());
    return true;
}

Table Table::parse(const std::string &text)
{
    static const std::string mark = "\xef\xbb\xbf";
    Table table;
    std::stringstream lines(text.compare(0, mark.size(), mark) == 0 ? text.substr(mark.size()) : text);
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        line = trimmed(line);
        if (!line.empty() && line[0] != '#')
            table.rows.push_back({number, fieldsOf(line)});
    }
    return table;
}

} // namespace sim
