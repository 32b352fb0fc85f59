#include "replay/RowReport.h"

#include "core/Log.h"

namespace sim {

namespace {

std::string rows(int count)
{
    return std::to_string(count) + (count == 1 ? " row" : " rows");
}

} // namespace

RowReport::RowReport(std::filesystem::path file)
    : m_file(std::move(file))
{
}

RowReport::~RowReport()
{
    std::string text;
    if (m_unreadable > 0)
        text += ", " + rows(m_unreadable) + " can't be read and left out, the first is line "
            + std::to_string(m_firstLine);
    if (m_repeated > 0)
        text += ", " + rows(m_repeated) + " left out for repeating a timestamp";
    if (m_disordered > 0)
        text += ", " + rows(m_disordered) + " put in order of time";
    if (!text.empty())
        complain(m_file.string() + ": " + text.substr(2));
}

void RowReport::unreadable(int line)
{
    if (m_unreadable++ == 0)
        m_firstLine = line;
}

} // namespace sim
