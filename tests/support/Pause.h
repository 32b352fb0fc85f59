#pragma once

#include <QElapsedTimer>
#include <gtest/gtest.h>
#include <vector>

/// Watches a switch that is locked for a while: what it tells must hold at that moment, and at least the
/// given milliseconds lie between the two.
class Pause {
public:
    /// To be called with what was told and what the property says now.
    void told(bool enabled, bool property)
    {
        EXPECT_EQ(enabled, property);
        if (!enabled) {
            m_since.start();
            return;
        }
        if (m_since.isValid())
            m_pauses.push_back(m_since.elapsed());
        m_since.invalidate();
    }

    /// So many pauses, none shorter.
    void expect(std::size_t count, qint64 leastMs) const
    {
        EXPECT_EQ(m_pauses.size(), count);
        for (const qint64 pause : m_pauses)
            EXPECT_GE(pause, leastMs);
    }

private:
    QElapsedTimer m_since;
    std::vector<qint64> m_pauses;
};
