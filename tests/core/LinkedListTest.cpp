#include "VekCore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>

namespace
{

struct Element
{
    static inline int s_live = 0;
    Element() { ++s_live; }
    virtual ~Element() { --s_live; }
    Element * GetPrev() const { return m_links.previous; }
    void SetPrev(Element * element) { m_links.previous = element; }
    Element * GetNext() const { return m_links.next; }
    void SetNext(Element * element) { m_links.next = element; }

    VekDirectLinkedListPtr<Element> m_links;
};

bool IsList(CVekDirectLinkedList<Element *> const & list, std::deque<Element *> const & expected)
{
    Element * previous = nullptr;
    Element * at = list.GetHead();
    for (Element * const element : expected)
    {
        if (at != element || at->GetPrev() != previous)
            return false;
        previous = at;
        at = at->GetNext();
    }
    return !at && list.GetTail() == previous && list.GetCount() == expected.size();
}

} // namespace

TEST(LinkedList, AgreesWithADeque)
{
    std::vector<Element> elements(9);
    CVekDirectLinkedList<Element *> list;
    std::deque<Element *> model;
    std::mt19937 random(13);
    for (int turn = 0; turn < 5000; ++turn)
    {
        Element * const element = &elements[random() % elements.size()];
        auto const place = std::find(model.begin(), model.end(), element);
        if (random() % 5 == 0)
        {
            Element * const head = list.RemoveHead();
            ASSERT_EQ(head, model.empty() ? nullptr : model.front());
            if (head)
                model.pop_front();
        }
        else if (place == model.end() && random() % 5 != 0)
        {
            list.AddTail(element);
            model.push_back(element);
        }
        else // one that is in no list is left alone
        {
            list.Remove(element);
            if (place != model.end())
                model.erase(place);
            ASSERT_EQ(element->GetPrev(), nullptr);
            ASSERT_EQ(element->GetNext(), nullptr);
        }
        ASSERT_TRUE(IsList(list, model)) << turn;
    }
}

TEST(LinkedList, DeletesWhatItIsToldTo)
{
    Element::s_live = 0;
    // Kept: an added element's next link is left as it is; what it leads to is not the list's.
    Element element, stranger;
    for (bool const ends : {false, true})
    {
        CVekDirectLinkedList<Element *> list;
        auto * const added = ends ? &element : new Element;
        if (!ends)
            list.AddTail(new Element);
        added->SetNext(&stranger);
        list.AddTail(added);
        EXPECT_EQ(added->GetNext(), &stranger);
        if (ends)
            continue; // the list's end deletes nothing
        list.RemoveAll(true);
        EXPECT_TRUE(IsList(list, {}));
        list.AddTail(&element);
        EXPECT_TRUE(IsList(list, {&element}));
    }
    EXPECT_EQ(Element::s_live, 2);
    EXPECT_EQ(element.GetNext(), nullptr);
}
