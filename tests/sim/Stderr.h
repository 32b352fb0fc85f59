#pragma once

#include <iostream>
#include <mutex>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

/// Catches what is written to std::cerr while it lives, from any thread.
class Stderr {
public:
    Stderr()
        : m_before(std::cerr.rdbuf(&m_buffer))
    {
    }
    ~Stderr() { std::cerr.rdbuf(m_before); }
    Stderr(const Stderr &) = delete;
    Stderr &operator=(const Stderr &) = delete;

    std::vector<std::string> lines() const
    {
        std::vector<std::string> result;
        std::stringstream text(m_buffer.text());
        for (std::string line; std::getline(text, line);)
            result.push_back(line);
        return result;
    }

private:
    class Buffer : public std::streambuf {
    public:
        std::string text() const
        {
            const std::lock_guard lock(m_mutex);
            return m_text;
        }

    protected:
        std::streamsize xsputn(const char *bytes, std::streamsize count) override
        {
            const std::lock_guard lock(m_mutex);
            m_text.append(bytes, static_cast<std::size_t>(count));
            return count;
        }
        int_type overflow(int_type byte) override
        {
            const char c = traits_type::to_char_type(byte);
            return xsputn(&c, 1) == 1 ? byte : traits_type::eof();
        }

    private:
        mutable std::mutex m_mutex;
        std::string m_text;
    };

    Buffer m_buffer;
    std::streambuf *m_before;
};
