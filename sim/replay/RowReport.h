#pragma once

#include <filesystem>
#include <string>

namespace sim {

/// Gathers what is wrong with the rows of one file and says it in one line when it goes.
class RowReport {
public:
    explicit RowReport(std::filesystem::path file);
    ~RowReport();
    RowReport(const RowReport &) = delete;
    RowReport &operator=(const RowReport &) = delete;

    void unreadable(int line);
    void repeated() { ++m_repeated; }
    void disordered() { ++m_disordered; }

private:
    const std::filesystem::path m_file;
    int m_firstLine = 0;
    int m_unreadable = 0;
    int m_repeated = 0;
    int m_disordered = 0;
};

} // namespace sim
