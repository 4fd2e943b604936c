/// @file
/// Trees and lists for range-based loops.
///
/// @code
/// if (CVekRef<IVekXMLDocument> const document = VekLoadXMLDocument(L"scene.xml"))
/// {
///     IVekXMLElement & root = *document->GetRootElement();
///     for (IVekXMLElement & child : VekChildren(root))
///         for (auto const & [name, value, index] : VekAttributes(child))
///             fputws(value, stdout);
///     for (IVekXMLElement & mesh : VekFindAll(root, L"mesh")) // at any depth
///         mesh.SetAttributeValue(L"visible", true, true);
/// }
/// @endcode
///
/// Elements and packets of resource files have children alike, and so have the entries of a document type's rules;
/// those of a const one are const. No references are added, and null entries are left out. A loop over children may
/// change the list behind the place where it stands; what is removed before it, or there, makes it skip entries.
#ifndef VEK_WALK_H
#define VEK_WALK_H

#include "VekCore.h"
#include "VekLexer.h"
#include "VekPackets.h"
#include "VekText.h"
#include "VekXML.h"

/// @cond internal
namespace vek
{
/// Where every loop ends.
struct WalkEnd
{
};

/// Stands for a node where none is looked at.
template <class Node>
Node & SomeNode() noexcept;

/// The class that a node has its children as.
template <class T>
struct Referred;
template <class T>
struct Referred<T &>
{
    using Type = T;
};
template <class Node>
using ChildOf = typename Referred<decltype(*SomeNode<Node>().GetChild(0))>::Type;

/// Whether two names are equal without regard to the case of ASCII letters; null equals an empty one.
inline bool IsNamed(CVekString<wchar_t> const & name, wchar_t const * sought) noexcept
{
    return name.Compare(sought, false) == 0;
}

/// The entries of a list by index. List tells Count(), At(index), null for none, and whether Has(entry).
template <class List>
class IndexWalk
{
public:
    using Entry = typename List::Entry;

    class Iterator
    {
    public:
        explicit Iterator(List list) noexcept : m_list(list) { Settle(); }
        decltype(auto) operator*() const noexcept { return *m_entry; }
        Iterator & operator++() noexcept
        {
            ++m_index;
            Settle();
            return *this;
        }
        bool operator!=(WalkEnd) const noexcept { return m_index < m_count; }

    private:
        // The list may change from one step to the next.
        void Settle() noexcept
        {
            m_count = m_list.Count();
            for (; m_index < m_count; ++m_index)
            {
                m_entry = m_list.At(m_index);
                if (m_entry && m_list.Has(*m_entry))
                    return;
            }
        }

        List m_list;
        Entry m_entry{};
        int m_index = 0;
        int m_count = 0;
    };

    explicit IndexWalk(List list) noexcept : m_list(list) {}
    Iterator begin() const noexcept { return Iterator(m_list); }
    WalkEnd end() const noexcept { return {}; }

private:
    List m_list;
};

template <class Node>
struct ChildList
{
    using Entry = ChildOf<Node> *;

    Node * node;
    int Count() const noexcept { return node->GetNumChildren(); }
    Entry At(int index) const noexcept { return node->GetChild(index); }
    template <class Child>
    static bool Has(Child const &) noexcept
    {
        return true;
    }
};

template <class Node>
struct NamedChildList
{
    using Entry = ChildOf<Node> *;

    Node * node;
    wchar_t const * name;
    int Count() const noexcept { return node->GetNumChildren(); }
    Entry At(int index) const noexcept { return node->GetChild(index); }
    template <class Child>
    bool Has(Child const & child) const noexcept
    {
        return IsNamed(child.GetName(), name);
    }
};

template <class Tokenizer, class Token>
struct TokenEntries
{
    using Entry = Token *;

    Tokenizer * tokenizer;
    int Count() const noexcept { return tokenizer->GetNumTokens(); }
    Entry At(int index) const noexcept { return tokenizer->GetToken(index); }
    static bool Has(IVekTokenizer::IToken const &) noexcept { return true; }
};
} // namespace vek
/// @endcond

/// The children of an element, a packet or an entry of a rule, in order.
template <class Node>
vek::IndexWalk<vek::ChildList<Node>> VekChildren(Node & node) noexcept
{
    return vek::IndexWalk<vek::ChildList<Node>>({&node});
}

/// Those of them that have the name, without regard to the case of ASCII letters. The text must last as long as the
/// loop.
template <class Node>
vek::IndexWalk<vek::NamedChildList<Node>> VekChildren(Node & node, wchar_t const * name) noexcept
{
    return vek::IndexWalk<vek::NamedChildList<Node>>({&node, name});
}

/// The tokens of a tokenizer that pass its filter, in order.
inline auto VekTokens(IVekTokenizer & tokenizer) noexcept
{
    return vek::IndexWalk(vek::TokenEntries<IVekTokenizer, IVekTokenizer::IToken>{&tokenizer});
}
inline auto VekTokens(IVekTokenizer const & tokenizer) noexcept
{
    return vek::IndexWalk(vek::TokenEntries<IVekTokenizer const, IVekTokenizer::IToken const>{&tokenizer});
}

/// An attribute in a loop, valid until the element's attributes change: its name, its value as it is stored, which is
/// escaped (IVekXMLElement::GetAttributeValue by name undoes that), and its index.
struct VekAttribute
{
    /// The element's own.
    CVekString<wchar_t> const & name;
    CVekString<wchar_t> const & value;
    /// From 0.
    int index;
};

/// The attributes of an element, in order.
class VekAttributes
{
public:
    /// @cond internal
    class Iterator
    {
    public:
        explicit Iterator(IVekXMLElement const & element) noexcept : m_element(&element) {}
        VekAttribute operator*() const noexcept
        {
            return {m_element->GetAttributeName(m_index), m_element->GetAttributeValue(m_index), m_index};
        }
        Iterator & operator++() noexcept
        {
            ++m_index;
            return *this;
        }
        bool operator!=(vek::WalkEnd) const noexcept { return m_index < m_element->GetNumAttributes(); }

    private:
        IVekXMLElement const * m_element;
        int m_index = 0;
    };
    /// @endcond

    /// The element must last as long as the loop.
    explicit VekAttributes(IVekXMLElement const & element) noexcept : m_element(element) {}
    /// For range-based loops.
    Iterator begin() const noexcept { return Iterator(m_element); }
    static vek::WalkEnd end() noexcept { return {}; }

private:
    IVekXMLElement const & m_element;
};

/// Everything below an element or a packet in the order of the file, each before what is below it. A tree of any depth
/// is walked without recursion: the walk keeps its place at each level in memory of its own. The loop may change what
/// lies below the current entry, and lists of children behind the place where they are walked; it must not release the
/// current entry or one above it.
///
///     auto walk = VekDescendants(root);
///     for (IVekXMLElement & element : walk)
///         if (element.GetName() == L"skipped")
///             walk.SkipChildren();
///     if (walk.IsOutOfMemory())
template <class Node>
class VekDescendants
{
public:
    /// @cond internal
    class Iterator
    {
    public:
        explicit Iterator(VekDescendants & walk) noexcept : m_walk(&walk) {}
        Node & operator*() const noexcept { return *m_walk->m_current; }
        Iterator & operator++() noexcept
        {
            m_walk->Advance();
            return *this;
        }
        bool operator!=(vek::WalkEnd) const noexcept { return m_walk->m_current != nullptr; }

    private:
        VekDescendants * m_walk;
    };
    /// @endcond

    /// All entries below the root, which is not among them.
    explicit VekDescendants(Node & root) noexcept : m_root(&root) {}
    /// Only the entries of that name, without regard to the case of ASCII letters; the text must last as long as the
    /// walk.
    VekDescendants(Node & root, wchar_t const * name) noexcept : m_root(&root), m_name(name), m_isNamed(true) {}
    VekDescendants(VekDescendants const &) = delete;
    VekDescendants & operator=(VekDescendants const &) = delete;
    ~VekDescendants() { Clear(); }

    /// Begins the walk, anew each time.
    Iterator begin() noexcept
    {
        Clear();
        m_isOutOfMemory = false;
        m_current = m_root;
        Advance();
        return Iterator(*this);
    }
    /// Where a range-based loop ends.
    vek::WalkEnd end() const noexcept { return {}; }

    /// Leaves out what is below the current entry.
    void SkipChildren() noexcept { m_skips = true; }
    /// What the current entry is a child of.
    Node & GetParent() const noexcept { return m_level->node; }
    /// The levels between the current entry and where the walk began; 1 for that one's children.
    int GetDepth() const noexcept { return m_depth; }
    /// True when the last walk ended early, for want of memory.
    bool IsOutOfMemory() const noexcept { return m_isOutOfMemory; }

private:
    struct Level : CVekPooled
    {
        Level(Node & node_, Level * above_) noexcept : node(node_), above(above_) {}

        Node & node;
        int next = 0;
        Level * above;
    };

    void Advance() noexcept
    {
        do
            Step();
        while (m_isNamed && m_current && !IsWanted(*m_current, 0));
    }
    void Step() noexcept
    {
        bool const goesDown = !m_skips && m_current->GetNumChildren() > 0;
        m_skips = false;
        if (goesDown && !Push(*m_current))
            return;
        for (m_current = nullptr; m_level && !m_current;)
        {
            if (m_level->next < m_level->node.GetNumChildren())
                m_current = m_level->node.GetChild(m_level->next++);
            else
                Pop();
        }
    }
    // For names of elements; packets have none.
    template <class Named>
    auto IsWanted(Named const & node, int) const noexcept -> decltype(vek::IsNamed(node.GetName(), nullptr))
    {
        return vek::IsNamed(node.GetName(), m_name);
    }
    static bool IsWanted(Node const &, long) noexcept { return true; }

    bool Push(Node & node) noexcept
    {
        auto * const level = new Level(node, m_level);
        if (!level)
        {
            Clear();
            m_isOutOfMemory = true;
            return false;
        }
        m_level = level;
        ++m_depth;
        return true;
    }
    void Pop() noexcept
    {
        Level * const level = m_level;
        m_level = level->above;
        --m_depth;
        delete level;
    }
    void Clear() noexcept
    {
        while (m_level)
            Pop();
        m_current = nullptr;
        m_skips = false;
    }

    Node * m_root;
    wchar_t const * m_name = nullptr;
    bool m_isNamed = false;
    bool m_skips = false;
    bool m_isOutOfMemory = false;
    Node * m_current = nullptr;
    Level * m_level = nullptr;
    int m_depth = 0;
};
/// @cond internal
template <class Node>
VekDescendants(Node &) -> VekDescendants<vek::ChildOf<Node>>;
template <class Node>
VekDescendants(Node &, wchar_t const *) -> VekDescendants<vek::ChildOf<Node>>;
/// @endcond

/// All elements of that name below an element, at any depth, in the order of the file: a VekDescendants that leaves out
/// the others. The text must last as long as the loop.
inline VekDescendants<IVekXMLElement> VekFindAll(IVekXMLElement & element, wchar_t const * name) noexcept
{
    return {element, name};
}
inline VekDescendants<IVekXMLElement const> VekFindAll(IVekXMLElement const & element, wchar_t const * name) noexcept
{
    return {element, name};
}

#endif
