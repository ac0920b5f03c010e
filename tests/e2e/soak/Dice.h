#pragma once

#include <QList>

#include <random>

namespace lumaro {

/// Chance that a seed repeats. No list is empty.
class Dice
{
public:
    explicit Dice(unsigned seed)
        : m_engine(seed)
    {
    }

    /// 0 to `end` - 1.
    int below(int end) { return int(m_engine() % unsigned(end)); }
    double fraction() { return below(1001) / 1000.0; }
    bool hits(int percent) { return below(100) < percent; }
    template <typename T>
    const T &oneOf(const QList<T> &list)
    {
        return list.at(below(int(list.size())));
    }

private:
    std::mt19937 m_engine;
};

} // namespace lumaro
