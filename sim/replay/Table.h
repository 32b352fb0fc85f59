#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace sim {

/// The rows of a text table as recordings hold them: fields by commas, blanks around them left out, or by
/// blanks in rows that have no comma; comment lines (#), empty lines, carriage returns and a byte order mark
/// skipped.
struct Table {
    struct Row {
        int line = 0; ///< in the file, from 1
        std::vector<std::string> fields;
    };
    std::vector<Row> rows;

    /// False if the file can't be read.
    static bool read(const std::filesystem::path &path, Table &table);
    static Table parse(const std::string &text);
};

} // namespace sim
