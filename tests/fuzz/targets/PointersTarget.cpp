// The pointer array, the pointer list and the linked list beside std::vector.

#include "VekCore.h"

#include "base/PointerList.h"
#include "fuzz/targets/Targets.h"

#include <algorithm>
#include <vector>

namespace fuzz
{

namespace
{

struct Item
{
    Item * GetPrev() const { return links.previous; }
    Item * GetNext() const { return links.next; }
    void SetPrev(Item * item) { links.previous = item; }
    void SetNext(Item * item) { links.next = item; }
    VekDirectLinkedListPtr<Item> links;
};

using Model = std::vector<Item *>;

void ChangeArray(Reader & reader, CVekPointerArray<Item> & array, Model & model, Item * item)
{
    int const index = reader.Number();
    bool const inside = index >= 0 && index < static_cast<int>(model.size());
    switch (reader.Below(8))
    {
    case 0:
        array.RemoveAt(index);
        if (inside)
            model.erase(model.begin() + index);
        break;
    case 1:
        array.SetGrowthStep(index);
        break;
    case 2:
        if (index < 1000)
            Check(array.Reserve(index) && array.GetCapacity() >= index, "room is made");
        break;
    case 3:
        if (reader.Below(20) == 0)
        {
            array.Free();
            model.clear();
        }
        break;
    case 4:
    case 5:
        Check(array.Insert(index, item) == (inside || index == static_cast<int>(model.size())), "Insert");
        if (inside || index == static_cast<int>(model.size()))
            model.insert(model.begin() + index, item);
        break;
    default:
        Check(array.Append(item), "Append");
        model.push_back(item);
    }
    Check(array.GetCount() == static_cast<int>(model.size()) && array.GetCapacity() >= array.GetCount(), "the count");
    Check(array.At(index) ==
              (index >= 0 && index < array.GetCount() ? model[static_cast<std::size_t>(index)] : nullptr),
          "an item");
}

void ChangeList(Reader & reader, vek::PointerList<Item> & list, Model & model, Item * item)
{
    switch (reader.Below(5))
    {
    case 0:
        list.Remove(item);
        std::erase(model, item);
        break;
    case 1:
        Check(list.TakeFirst() == (model.empty() ? nullptr : model.front()), "TakeFirst");
        if (!model.empty())
            model.erase(model.begin());
        break;
    default:
        Check(list.AppendTail(item), "AppendTail");
        model.push_back(item);
    }
    unsigned int const index = reader.Below(50);
    Check(list.Count() == model.size() && list.At(index) == (index < model.size() ? model[index] : nullptr), "a node");
    Check(list.Contains(item) == (std::find(model.begin(), model.end(), item) != model.end()), "Contains");
}

void ChangeLinks(Reader & reader, CVekDirectLinkedList<Item *> & list, Model & model, Item * item)
{
    auto const place = std::find(model.begin(), model.end(), item);
    if (reader.Below(6) == 0)
    {
        Check(list.RemoveHead() == (model.empty() ? nullptr : model.front()), "RemoveHead");
        if (!model.empty())
            model.erase(model.begin());
    }
    else if (place == model.end())
    {
        list.AddTail(item);
        model.push_back(item);
    }
    else
    {
        list.Remove(item);
        model.erase(place);
    }
    Check(list.GetCount() == model.size() && list.GetHead() == (model.empty() ? nullptr : model.front()) &&
              list.GetTail() == (model.empty() ? nullptr : model.back()),
          "the ends");
}

template <class List>
void CheckLinks(List const & list, Model const & model)
{
    auto expected = model.begin();
    for (auto const * at = list.GetHead(); at; at = at->GetNext(), ++expected)
        Check(expected != model.end() && at == *expected, "the links lead from one to the next");
}

} // namespace

void RunPointers(Bytes input)
{
    Reader reader(input);
    Item items[16];
    CVekPointerArray<Item> array;
    vek::PointerList<Item> list;
    CVekDirectLinkedList<Item *> links;
    Model arrayModel, listModel, linksModel;
    while (!reader.AtEnd())
    {
        Item * const item = &items[reader.Below(16)];
        ChangeArray(reader, array, arrayModel, item);
        ChangeList(reader, list, listModel, item);
        ChangeLinks(reader, links, linksModel, item);
        CheckLinks(links, linksModel);
    }
    array.Free();
}

} // namespace fuzz
