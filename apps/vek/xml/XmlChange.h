#pragma once

#include "xml/XmlPatch.h"
#include "xml/XmlPath.h"

#include <set>
#include <string>
#include <utility>

namespace tool
{

/// One thing to change in a file. All paths are those of the file as it is before the first change.
struct XmlEdit
{
    enum class Kind
    {
        Set,    // an attribute to a value
        Remove, // an attribute, or, without a name, the element
        Rename  // an attribute, or, without a name, the element, to the value
    };

    Kind kind = Kind::Set;
    std::wstring path;
    std::wstring attribute;
    std::wstring value;
};

/// Takes edits, and makes them in a file's bytes and, to tell what these have to mean afterwards, in its document.
class XmlChange
{
public:
    XmlChange(XmlSource & source, bool creates) : m_source(source), m_creates(creates) {}

    /// False after telling the user why it isn't possible.
    bool Add(XmlEdit const & edit);
    /// Makes them in the document; false when two are about the same place, as the user is told then.
    bool Finish();
    XmlPatch const & Patch() const { return m_patch; }

private:
    using Attribute = std::pair<std::wstring, std::wstring>;

    /// What is to be done to the document in the end: positions are known only until it changes.
    struct Step
    {
        XmlEdit edit;
        IVekXMLElement * element = nullptr;
        int index = -1;         // the attribute's; -1 for a new one, and for the element
        std::size_t blanks = 0; // units of white space in front of a removed element that go, too
    };

    /// Elements that are missing, one in the other.
    struct Creation
    {
        IVekXMLElement * parent;
        std::wstring path;
        std::vector<std::wstring> names;
        std::vector<Attribute> attributes; // of the innermost
        std::wstring indentation;          // in front of it
        bool isBehindLast = false;         // and in front of the white space behind its parent's last element
    };

    bool Refuse(std::wstring const & why) const;
    bool RefuseEntity(IVekXMLElement const & element) const;
    bool CheckWords(XmlEdit const & edit) const;
    bool Encode(std::wstring_view text, bool isName, std::string & bytes) const;
    bool FindValue(Step const & step, XmlRange & value) const;
    /// False after telling the user that there is none.
    bool FindWrittenValue(Step const & step, XmlRange & value) const;

    bool AddSet(Step const & step, XmlTags const & tags);
    bool AddRemove(Step & step, XmlTags const & tags);
    bool AddRename(Step const & step, XmlTags const & tags);
    bool AddCreation(XmlEdit const & edit, XmlPath const & path, std::size_t possible, IVekXMLElement * parent);
    void FindPlace(Creation & creation, XmlTags const & tags, XmlRange & place, std::string & bytes) const;
    bool Insert(Creation & creation);
    bool EncodeCreation(Creation const & creation, std::string & bytes) const;

    static void Make(Step const & step);
    void MakeRemoval(Step const & step) const;
    static void Make(Creation const & creation);

    XmlSource & m_source;
    bool m_creates;
    XmlPatch m_patch;
    std::vector<Step> m_steps;
    std::vector<Creation> m_creations;
    std::set<std::pair<IVekXMLElement const *, std::wstring>> m_touched;
};

} // namespace tool
