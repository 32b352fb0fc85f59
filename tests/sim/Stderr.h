#pragma once

#include <iostream>
#include <sstream>
#include <string>
#include <vector>

/// Catches what is written to std::cerr while it lives.
class Stderr {
public:
    Stderr()
        : m_before(std::cerr.rdbuf(m_text.rdbuf()))
    {
    }
    ~Stderr() { std::cerr.rdbuf(m_before); }
    Stderr(const Stderr &) = delete;
    Stderr &operator=(const Stderr &) = delete;

    /// For the time after all threads that write have ended or waited.
    std::vector<std::string> lines() const
    {
        std::vector<std::string> result;
        std::stringstream text(m_text.str());
        for (std::string line; std::getline(text, line);)
            result.push_back(line);
        return result;
    }

private:
    std::stringstream m_text;
    std::streambuf *m_before;
};
