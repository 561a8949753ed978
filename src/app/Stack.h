#pragma once
// The extent history: an unbounded last-in-first-out list of map rectangles.
// After every Push and Pop, MenuChoiceStatus reports whether "previous view"
// can be used (at least one entry).

#include "map/MapTypes.h"

#include <functional>
#include <vector>

namespace mervola {

class Stack {
public:
    void Push(const map::MapRect &rect)
    {
        m_items.push_back(rect);
        MenuChoiceStatus();
    }
    // The last rectangle pushed; an empty rectangle when the history is empty.
    map::MapRect Pop()
    {
        map::MapRect r;
        if (!m_items.empty()) {
            r = m_items.back();
            m_items.pop_back();
        }
        MenuChoiceStatus();
        return r;
    }
    int count() const { return int(m_items.size()); }
    void clear()
    {
        m_items.clear();
        MenuChoiceStatus();
    }
    // Called with true when the history holds at least one extent.
    std::function<void(bool)> onStatus;

private:
    void MenuChoiceStatus()
    {
        if (onStatus)
            onStatus(count() >= 1);
    }
    std::vector<map::MapRect> m_items;
};

}  // namespace mervola
