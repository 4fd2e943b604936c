// Strings beside std::basic_string.

#include "VekLib.h"

#include "fuzz/targets/Targets.h"

#include <algorithm>

namespace fuzz
{

namespace
{

template <class T>
using Model = std::basic_string<T>;

constexpr std::size_t LONGEST = 3000;

// count characters from start (0: all that follow), cut to what is there; negative ones mean nothing to take.
template <class T>
Model<T> Cut(Model<T> const & text, int start, int count)
{
    if (start < 0 || count < 0 || static_cast<std::size_t>(start) >= text.size())
        return {};
    return text.substr(static_cast<std::size_t>(start), count == 0 ? Model<T>::npos : static_cast<std::size_t>(count));
}

template <class T>
Model<T> Fold(Model<T> text, bool caseSensitive)
{
    for (T & unit : text)
        if (!caseSensitive && unit >= 'A' && unit <= 'Z')
            unit = static_cast<T>(unit + 32);
    return text;
}

int Index(std::size_t position)
{
    return position == std::string::npos ? -1 : static_cast<int>(position);
}

template <class T>
class Strings
{
public:
    explicit Strings(Reader & reader) : m_reader(reader) {}

    void Step()
    {
        auto & [string, model] = m_pairs[m_reader.Below(2)];
        auto const & [other, otherModel] = m_pairs[m_reader.Below(2)];
        Model<T> const text = m_reader.Text<T>(40);
        int const start = m_reader.Number(), count = m_reader.Number();
        switch (m_reader.Below(13))
        {
        case 0:
            string.Assign(text.c_str());
            model = text;
            break;
        case 1:
            string.AssignPart(text.c_str(), start, count);
            model = Cut(text, start, count);
            break;
        case 2:
            string.AssignPart(other, start, count);
            model = Cut(Model<T>(otherModel), start, count);
            break;
        case 3:
            string.Append(text.c_str(), start, count);
            model += Cut(text, start, count);
            break;
        case 4:
            string.Append(other);
            model += Model<T>(otherModel);
            break;
        case 5:
            string = other;
            model = Model<T>(otherModel);
            break;
        case 6:
            Reserve(string, model, start, count % 2 == 0);
            break;
        case 7:
            Move(string, model, start, m_reader.Number(), count);
            break;
        case 8:
            UseOwnText(string, model, start, count);
            break;
        case 9:
        {
            Model<T> const format(1, '%');
            string.AppendFormat((format + T('d')).c_str(), count);
            std::string const digits = std::to_string(count);
            model.append(digits.begin(), digits.end());
            break;
        }
        default:
            Search(string, model, text, start, count % 2 == 0);
        }
        if (model.size() > LONGEST)
        {
            string.Assign(static_cast<T const *>(nullptr));
            model.clear();
        }
        Check(string.GetLength() == static_cast<int>(model.size()) && Model<T>(static_cast<T const *>(string)) == model,
              "a string holds what its model holds");
        Check(string.GetCapacity() >= string.GetLength(), "a string has room for its text");
    }

private:
    void Reserve(CVekString<T> & string, Model<T> & model, int capacity, bool keep)
    {
        if (capacity > 100000)
            return;
        bool const done = string.Reserve(capacity, keep);
        Check(done == (capacity >= 0), "room is made");
        if (done)
            model = keep && capacity > 0 ? model.substr(0, static_cast<std::size_t>(capacity) - 1) : Model<T>();
    }

    // Kept: only the end of a text can lengthen it; anything else is cut. A gap, which holds zeros, is not looked into.
    void Move(CVekString<T> & string, Model<T> & model, int from, int to, int count)
    {
        int const length = static_cast<int>(model.size());
        int const moved = from < 0 ? 0 : std::min(count, length - from);
        if (to > length)
            return;
        string.MoveCharacters(from, to, count);
        if (to < 0 || moved <= 0 || from == to || to + moved > string.GetCapacity())
            return;
        bool const isEnd = count >= length - from;
        Model<T> const old = model;
        model = old.substr(0, static_cast<std::size_t>(to)) +
                old.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(moved));
        if (!isEnd && to + moved < length)
            model += old.substr(static_cast<std::size_t>(to + moved));
        if (!isEnd)
            model.resize(old.size());
    }
    // A text may be a part of the string that it goes to.
    void UseOwnText(CVekString<T> & string, Model<T> & model, int start, int count)
    {
        auto const at = static_cast<std::size_t>(start < 0 ? 0 : start) % (model.size() + 1);
        T const * const own = static_cast<T const *>(string) + at;
        if (count % 2)
        {
            string.AssignPart(own, 0, count);
            model = Cut(model.substr(at), 0, count);
            return;
        }
        string.Append(own, 0, count);
        model += Cut(model.substr(at), 0, count);
    }

    void Search(CVekString<T> const & string, Model<T> const & model, Model<T> const & text, int start, bool exact)
    {
        Model<T> const pattern = Fold(text.substr(0, 3), exact), folded = Fold(model, exact);
        Model<T> const given = text.substr(0, 3);
        auto const from = static_cast<std::size_t>(start < 0 ? 0 : start);
        bool const inside = !pattern.empty() && from < model.size();
        Check(string.Find(given.c_str(), start, exact) == (inside ? Index(folded.find(pattern, from)) : -1), "Find");
        Check(string.FindOneOf(given.c_str(), start, exact) ==
                  (from < model.size() ? Index(folded.find_first_of(pattern, from)) : -1),
              "FindOneOf");
        bool const backwards = start >= -1 && start < static_cast<int>(model.size()) && !pattern.empty();
        std::size_t const last = start == -1 ? Model<T>::npos : static_cast<std::size_t>(start);
        Check(string.ReverseFind(given.c_str(), start, exact) == (backwards ? Index(folded.rfind(pattern, last)) : -1),
              "ReverseFind");
        Check(string.ReverseFindOneOf(given.c_str(), start, exact) ==
                  (backwards ? Index(folded.find_last_of(pattern, last)) : -1),
              "ReverseFindOneOf");
        CVekString<T> const other(given.c_str());
        Check(string.Compare(given.c_str(), exact) == string.Compare(other, exact), "Compare");
        Check((string.Compare(given.c_str(), exact) == 0) == (folded == pattern), "Compare of equals");
    }

    Reader & m_reader;
    std::pair<CVekString<T>, Model<T>> m_pairs[2];
};

} // namespace

void RunStrings(Bytes input)
{
    Reader reader(input);
    Strings<char> narrow(reader);
    Strings<wchar_t> wide(reader);
    while (!reader.AtEnd())
    {
        narrow.Step();
        wide.Step();
    }
}

} // namespace fuzz
