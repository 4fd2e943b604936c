/// @file
/// The XML object model: elements with attributes and CDATA, documents with their DTD, the parser, the writer, and the
/// manager that creates them all.
///
/// Names are matched everywhere without regard to the case of ASCII letters, and the first match wins. A null name
/// matches only an empty one. A tree of elements is used by one thread at a time; different trees by any number of
/// threads.
///
/// @code
/// CVekRef<IVekXMLDocument> const document{getVekLibKernel()->GetXMLManager()->CreateXMLDocument()};
/// CVekXMLParser parser;
/// if (!parser.ParseXMLFile(L"scene.xml", document.Get()) || !parser.IsComplete())
///     VekLogOutput(0, L"line %u: %s", parser.GetError().line, parser.GetError().text);
/// else if (IVekXMLElement const * const light = document->FindElementFromPath(L"room/light", false))
/// {
///     CVekVector4D<double> position;
///     light->GetAttributeValue(L"position", position, CVekVector4D<double>());
/// }
/// @endcode
#ifndef VEK_XML_H
#define VEK_XML_H

#include "VekCore.h"
#include "VekMath.h"
#include "VekText.h"
#include "VekVariant.h"

VEK_HEADER_BEGIN

namespace vek
{
struct XMLEdit;
class XMLMaker;
} // namespace vek

/// A node of an XML document: a name, ordered children, ordered attributes whose values are kept as escaped text, and
/// at most one CDATA section. The library's implementation is CVekXMLElement; IVekXMLManager::CreateXMLElement makes
/// one.
class IVekXMLElement : public IVekObject
{
public:
    /// The parent that CVekXMLElement::SetParent recorded, not counted; null when none was. AddChild records none.
    VEK_OVERLOADS2(virtual IVekXMLElement * GetParent() = 0, virtual IVekXMLElement const * GetParent() const = 0)

    /// Copies the name; null empties it.
    virtual void SetName(wchar_t const * name) = 0;
    /// The name, which stays the element's.
    virtual CVekString<wchar_t> const & GetName() const = 0;

    /// The children, null entries included.
    virtual int GetNumChildren() const = 0;
    /// Adds a reference to the child and inserts it before the index; a negative index, or one of the last position or
    /// beyond, appends. Returns the child's index. Duplicates and parents are not checked, and no cycle may be built.
    /// An element of a foreign implementation is stored as a null entry, and the reference that was added to it is
    /// never given back. When memory is exhausted nothing is stored, the child's extra reference stays, and the index
    /// of the last child is returned.
    virtual int AddChild(IVekXMLElement * child, int index) = 0;

    /// Removes and releases the first child that is the given element or has the given name (silently nothing when
    /// there is none), or the child at an index (a bad index is logged). Null, and any element of a foreign
    /// implementation, means the first null entry.
    VEK_OVERLOADS3(virtual void RemoveChild(IVekXMLElement * child) = 0,
                   virtual void RemoveChild(wchar_t const * name) = 0, virtual void RemoveChild(int index) = 0)
    /// Removes and releases all children.
    virtual void RemoveAllChildren() = 0;

    /// The child at an index, no reference added; null, with a message, for a bad index.
    VEK_OVERLOADS2(virtual IVekXMLElement * GetChild(int index) = 0,
                   virtual IVekXMLElement const * GetChild(int index) const = 0)

    /// The first child of that name, no reference added; null when there is none. The second form can append a new
    /// child of that name instead; null, with a message, when none can be made: before VekLibInit, or when memory is
    /// exhausted.
    VEK_OVERLOADS2(virtual IVekXMLElement const * FindChild(wchar_t const * name) const = 0,
                   virtual IVekXMLElement * FindChild(wchar_t const * name, bool create) = 0)

    /// The number of attributes.
    virtual int GetNumAttributes() const = 0;
    /// Adds an attribute with the value converted to text and escaped; before the index when it names an attribute,
    /// else at the end. Returns the attribute's index, or -1 when the name is taken (silently), the value's type has no
    /// text form or memory is exhausted.
    virtual int AddAttribute(wchar_t const * name, VEK_VARIANT const & value, int index) = 0;

    /// Replaces an attribute's value. By name the text is escaped, and a missing attribute can be added; by index the
    /// text is stored as it is, unescaped. False when there is no such attribute or the value has no text form.
    VEK_OVERLOADS2(virtual bool SetAttributeValue(wchar_t const * name, VEK_VARIANT const & value, bool add) = 0,
                   virtual bool SetAttributeValue(int index, VEK_VARIANT const & value) = 0)

    /// Renames the attribute of that name; false when there is none. The form by index refuses every index inside the
    /// list, with a message, and does nothing for one beyond it: rename by name.
    VEK_OVERLOADS2(virtual bool RenameAttribute(int index, wchar_t const * newName) = 0,
                   virtual bool RenameAttribute(wchar_t const * name, wchar_t const * newName) = 0)

    /// Both forms refuse to remove an existing attribute, with a message and false; the form by index does nothing and
    /// returns true for an index beyond the list. RemoveAllAttributes removes.
    VEK_OVERLOADS2(virtual bool RemoveAttribute(wchar_t const * name) = 0, virtual bool RemoveAttribute(int index) = 0)
    /// Removes every attribute.
    virtual void RemoveAllAttributes() = 0;

    /// The index of the first attribute of that name, or -1.
    virtual int FindAttributeIndex(wchar_t const * name) const = 0;
    /// The attribute's name; an empty text for a bad index.
    virtual CVekString<wchar_t> const & GetAttributeName(int index) const = 0;

    /// Typed reads by name or index. True when the text was converted; components that the text doesn't have are 0.
    /// When there is no such attribute (a bad index is logged) the default is stored and false returned; a text that is
    /// no boolean gives false and leaves the output. The text form by name undoes the escaping, the one by index does
    /// not. The last one returns the stored text itself, an empty one for a bad index.
    VEK_OVERLOADS21(virtual bool GetAttributeValue(wchar_t const * name, CVekVector4D<double> & value,
                                                   CVekVector4D<double> const & defaultValue) const = 0,
                    virtual bool GetAttributeValue(int index, CVekVector4D<double> & value,
                                                   CVekVector4D<double> const & defaultValue) const = 0,
                    virtual bool GetAttributeValue(wchar_t const * name, CVekVector4D<float> & value,
                                                   CVekVector4D<float> const & defaultValue) const = 0,
                    virtual bool GetAttributeValue(int index, CVekVector4D<float> & value,
                                                   CVekVector4D<float> const & defaultValue) const = 0,
                    virtual bool GetAttributeValue(wchar_t const * name, CVekVector4D<int> & value,
                                                   CVekVector4D<int> const & defaultValue) const = 0,
                    virtual bool GetAttributeValue(int index, CVekVector4D<int> & value,
                                                   CVekVector4D<int> const & defaultValue) const = 0,
                    virtual bool GetAttributeValue(wchar_t const * name, CVekRGBA<float> & value,
                                                   CVekRGBA<float> const & defaultValue) const = 0,
                    virtual bool GetAttributeValue(int index, CVekRGBA<float> & value,
                                                   CVekRGBA<float> const & defaultValue) const = 0,
                    virtual bool GetAttributeValue(wchar_t const * name, CVekRGBA<unsigned char> & value,
                                                   CVekRGBA<unsigned char> const & defaultValue) const = 0,
                    virtual bool GetAttributeValue(int index, CVekRGBA<unsigned char> & value,
                                                   CVekRGBA<unsigned char> const & defaultValue) const = 0,
                    virtual bool GetAttributeValue(wchar_t const * name, bool & value, bool defaultValue) const = 0,
                    virtual bool GetAttributeValue(int index, bool & value, bool defaultValue) const = 0,
                    virtual bool GetAttributeValue(wchar_t const * name, double & value, double defaultValue) const = 0,
                    virtual bool GetAttributeValue(int index, double & value, double defaultValue) const = 0,
                    virtual bool GetAttributeValue(wchar_t const * name, float & value, float defaultValue) const = 0,
                    virtual bool GetAttributeValue(int index, float & value, float defaultValue) const = 0,
                    virtual bool GetAttributeValue(wchar_t const * name, int & value, int defaultValue) const = 0,
                    virtual bool GetAttributeValue(int index, int & value, int defaultValue) const = 0,
                    virtual bool GetAttributeValue(int index, CVekString<wchar_t> & value, wchar_t const * defaultValue)
                        const = 0,
                    virtual bool GetAttributeValue(wchar_t const * name, CVekString<wchar_t> & value,
                                                   wchar_t const * defaultValue) const = 0,
                    virtual CVekString<wchar_t> const & GetAttributeValue(int index) const = 0)

    /// Stores a copy of the bytes (UTF-16 text) as the element's CDATA section. The size is in bytes. False, with a
    /// message, when it already has one, the size is negative, there are no bytes of that size, or memory is exhausted.
    virtual bool AddCDATASection(unsigned char const * bytes, int size) = 0;
    /// In bytes; 0 without a section.
    virtual int GetCDATASectionSize() const = 0;
    /// Frees the section; nothing without one.
    virtual void RemoveCDATASection() = 0;
    /// Whether there is a section; it may be empty.
    virtual bool HasCDATASection() const = 0;
    /// The section's bytes, owned by the element; null without a section.
    virtual unsigned char const * GetCDATASection() const = 0;

protected:
    ~IVekXMLElement() = default;
};

/// What an element declaration or an entry of its content model stands for. The numbers are part of the interface.
enum VEK_XML_DTD_ENTRYTYPE
{
    VEK_XML_DTD_EMPTY = 0,
    VEK_XML_DTD_ELEMENT = 1,
    VEK_XML_DTD_ANY = 2,
    VEK_XML_DTD_MIXED = 3,
    VEK_XML_DTD_CHOICE = 4,
    VEK_XML_DTD_SEQUENCE = 5
};

/// An element declaration of a document type: the element's name, the kind of its content, and the content's entries.
class IVekXMLDTDRule : public IVekObject
{
public:
    /// One entry of a content model; entries form a tree. A group has an empty name and its members as children.
    class RuleEntry : public IVekObject
    {
    public:
        /// The name of the element that it stands for; empty for a group.
        virtual CVekString<wchar_t> const & GetName() const = 0;
        /// What it stands for.
        virtual VEK_XML_DTD_ENTRYTYPE GetType() const = 0;
        /// 0 exactly once, 1 optional, 2 zero or more, 3 one or more.
        virtual int GetOccurrence() const = 0;
        /// The number of children.
        virtual int GetNumChildren() const = 0;
        /// The child at an index, no reference added; null for a bad index.
        VEK_OVERLOADS2(virtual RuleEntry * GetChild(int index) = 0,
                       virtual RuleEntry const * GetChild(int index) const = 0)
        /// Appends a child (a null name makes a group) and returns its index; -1, with a message, when a child of the
        /// same name, type and occurrence exists or memory is exhausted.
        virtual int AddChild(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type, int occurrence) = 0;
        /// Removes and releases the child; a bad index is logged.
        virtual void RemoveChild(int index) = 0;
        /// Removes and releases all children.
        virtual void RemoveAllChildren() = 0;

    protected:
        ~RuleEntry() = default;
    };

    /// The name of the element that is declared.
    virtual CVekString<wchar_t> const & GetName() const = 0;
    /// What the element may contain.
    virtual VEK_XML_DTD_ENTRYTYPE GetType() const = 0;
    /// The entries of the outermost level.
    virtual int GetNumRuleEntries() const = 0;
    /// Appends an entry (a null name makes a group) and returns its index; -1, with a message, when an entry of that
    /// name exists or memory is exhausted.
    virtual int AddRuleEntry(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type, int occurrence) = 0;
    /// The entry at an index, no reference added; null for a bad index.
    VEK_OVERLOADS2(virtual RuleEntry * GetRuleEntry(int index) = 0,
                   virtual RuleEntry const * GetRuleEntry(int index) const = 0)
    /// Removes and releases the entry; a bad index is logged.
    virtual void RemoveRuleEntry(int index) = 0;
    /// Removes and releases all entries.
    virtual void RemoveAllRuleEntries() = 0;

protected:
    ~IVekXMLDTDRule() = default;
};

/// The declared attributes of one element of a document type.
class IVekXMLDTDAttributeList : public IVekObject
{
public:
    /// One declared attribute.
    class AttributeEntry : public IVekObject
    {
    public:
        /// The name of the attribute.
        virtual CVekString<wchar_t> const & GetName() const = 0;
        /// The declared type's text, such as "CDATA".
        virtual CVekString<wchar_t> const & GetType() const = 0;
        /// Whether it is declared "#REQUIRED".
        virtual bool IsRequired() const = 0;

    protected:
        ~AttributeEntry() = default;
    };

    /// The name of the element whose attributes are declared.
    virtual CVekString<wchar_t> const & GetName() const = 0;
    /// The number of declared attributes.
    virtual int GetNumAttributeEntries() const = 0;
    /// Appends an entry and returns its index; -1, with a message, when the name is taken or memory is exhausted.
    virtual int AddAttributeEntry(wchar_t const * name, wchar_t const * type, bool required) = 0;
    /// Removes and releases the entry; a bad index is logged.
    virtual void RemoveAttributeEntry(int index) = 0;
    /// Removes and releases all entries.
    virtual void RemoveAllAttributeEntries() = 0;
    /// The entry at an index, no reference added; null for a bad index.
    VEK_OVERLOADS2(virtual AttributeEntry * GetAttributeEntry(int index) = 0,
                   virtual AttributeEntry const * GetAttributeEntry(int index) const = 0)

protected:
    ~IVekXMLDTDAttributeList() = default;
};

/// One XML document: its root element, document type name, encoding name, and DTD.
class IVekXMLDocument : public IVekObject
{
public:
    /// Copies the name of the document type; always true.
    virtual bool SetDocumentType(wchar_t const * name) = 0;
    /// The name of the document type, which stays the document's.
    virtual CVekString<wchar_t> const & GetDocumentType() const = 0;
    /// Returns true and stores nothing: a document of this library is always "UTF-8".
    virtual bool SetEncoding(wchar_t const * name) = 0;
    /// The name of the encoding, which stays the document's.
    virtual CVekString<wchar_t> const & GetEncoding() const = 0;
    /// Takes a reference to the new root and releases the old one; null leaves the document without a root. Always
    /// true.
    virtual bool SetRootElement(IVekXMLElement * element) = 0;
    /// The root element, no reference added; null when there is none.
    VEK_OVERLOADS2(virtual IVekXMLElement * GetRootElement() = 0,
                   virtual IVekXMLElement const * GetRootElement() const = 0)
    /// Walks from the root along names separated by slashes or backslashes; the root's own name is not part of the
    /// path, an empty path is the root, and empty components are skipped. Missing elements can be created on the way.
    /// Returns the element reached, no reference added; null when the document has no root, or an element is missing or
    /// can't be made.
    virtual IVekXMLElement * FindElementFromPath(wchar_t const * path, bool create) = 0;

    /// The number of rules.
    virtual int GetNumDTDRules() const = 0;
    /// The rule at an index or of a name, no reference added; null when there is none.
    VEK_OVERLOADS2(virtual IVekXMLDTDRule * GetDTDRule(int index) = 0,
                   virtual IVekXMLDTDRule const * GetDTDRule(int index) const = 0)
    VEK_OVERLOADS2(virtual IVekXMLDTDRule * FindDTDRule(wchar_t const * name) = 0,
                   virtual IVekXMLDTDRule const * FindDTDRule(wchar_t const * name) const = 0)
    /// Appends a rule and returns its index; -1, with a message, when the name is taken or memory is exhausted.
    virtual int AddDTDRule(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type) = 0;
    /// Removes and releases the rule; a bad index is logged.
    virtual void RemoveDTDRule(int index) = 0;
    /// Removes and releases all rules.
    virtual void RemoveAllDTDRules() = 0;

    /// The number of attribute lists.
    virtual int GetNumDTDAttributeLists() const = 0;
    /// The attribute list at an index or of an element's name, no reference added; null when there is none.
    VEK_OVERLOADS2(virtual IVekXMLDTDAttributeList * GetDTDAttributeList(int index) = 0,
                   virtual IVekXMLDTDAttributeList const * GetDTDAttributeList(int index) const = 0)
    VEK_OVERLOADS2(virtual IVekXMLDTDAttributeList * FindDTDAttributeList(wchar_t const * name) = 0,
                   virtual IVekXMLDTDAttributeList const * FindDTDAttributeList(wchar_t const * name) const = 0)
    /// Appends an attribute list and returns its index; -1, with a message, when the name is taken or memory is
    /// exhausted.
    virtual int AddDTDAttributeList(wchar_t const * name) = 0;
    /// Removes and releases the list; a bad index is logged.
    virtual void RemoveDTDAttributeList(int index) = 0;
    /// Removes and releases all lists.
    virtual void RemoveAllDTDAttributeLists() = 0;

protected:
    ~IVekXMLDocument() = default;
};

/// Reads XML files into documents. External entities are never opened. One parser may read many files, one at a time.
class IVekXMLParser : public IVekObject
{
public:
    /// Reads a file of any encoding that its byte order mark or declaration names. Elements and attributes are added to
    /// the document's root element (made when there is none), which takes the name of the file's outermost element;
    /// attribute values are stored escaped; text outside CDATA sections is dropped. False, with messages, when the file
    /// can't be read or is malformed, or the document's root is of a foreign implementation; the document then keeps
    /// what was read. A file that merely ends early is not an error here; ask CVekXMLParser::IsComplete.
    virtual bool ParseXMLFile(wchar_t const * path, IVekXMLDocument * document) = 0;

protected:
    ~IVekXMLParser() = default;
};

/// Writes XML documents, one line for each tag, indented by depth. The encoding is the document's.
class IVekXMLWriter : public IVekObject
{
public:
    /// The spaces for each level of depth, 3 at first; a negative number is refused with a message.
    virtual void SetIndentation(int spaces) = 0;
    /// The spaces for each level.
    virtual int GetIndentation() const = 0;
    /// Writes the document to a new file; false, with messages, when the document has no root or the file can't be
    /// written whole.
    virtual bool WriteXMLFile(wchar_t const * path, IVekXMLDocument * document) = 0;
    /// Writes the document to an open stream, at its position; the same failures, and a null stream.
    virtual bool WriteXML(IVekIOStream * stream, IVekXMLDocument * document) = 0;

protected:
    ~IVekXMLWriter() = default;
};

/// Creates every XML object, each with one reference that the caller owns; null, with a message, when memory is
/// exhausted. The kernel has the one manager (IVekKernel::GetXMLManager).
class IVekXMLManager : public IVekObject
{
public:
    /// A new object without contents, which the caller releases; null, with a message, when memory is exhausted.
    virtual IVekXMLElement * CreateXMLElement() = 0;
    virtual IVekXMLDocument * CreateXMLDocument() = 0;
    virtual IVekXMLParser * CreateXMLParser() = 0;
    virtual IVekXMLWriter * CreateXMLWriter() = 0;

protected:
    ~IVekXMLManager() = default;
};

/// One attribute: a name and the text of its value, exactly as stored. The element escapes what is set through it.
class VEK_API CVekXMLAttribute : public CVekRefCounted<IVekObject>, public CVekPooled
{
public:
    CVekXMLAttribute() = default;
    /// Makes an attribute from texts of known length, the value stored as it is.
    CVekXMLAttribute(wchar_t const * name, int nameLength, wchar_t const * value, int valueLength);
    /// Copies name and value; the copy's count is 1.
    CVekXMLAttribute(CVekXMLAttribute const & other);
    /// Copies name and value.
    CVekXMLAttribute & operator=(CVekXMLAttribute const & other);
    ~CVekXMLAttribute() override;

    /// Copies the name; null empties it.
    void SetName(wchar_t const * name);
    /// The name and the stored text, which stay the attribute's.
    CVekString<wchar_t> const & GetName() const { return m_name; }
    CVekString<wchar_t> const & GetValue() const { return m_value; }

    /// Store the value's text, unescaped; always true. Vectors and colours are four numbers separated by ", "; doubles
    /// are kept with the precision of "%f", those of a vector with that of a float.
    bool SetValue(bool value);
    bool SetValue(int value);
    bool SetValue(float value);
    bool SetValue(double value);
    bool SetValue(CVekRGBA<unsigned char> const & value);
    bool SetValue(CVekRGBA<float> const & value);
    bool SetValue(CVekVector4D<int> const & value);
    bool SetValue(CVekVector4D<float> const & value);
    bool SetValue(CVekVector4D<double> const & value);
    bool SetValue(wchar_t const * value);

    /// Read the value's text; true, with what did not match 0. Only a boolean whose text is neither "TRUE" nor "FALSE"
    /// (in any case) gives false and leaves the output.
    bool GetValue(bool & value) const;
    bool GetValue(int & value) const;
    bool GetValue(float & value) const;
    bool GetValue(double & value) const; ///< Read with the precision of a float.
    bool GetValue(CVekRGBA<unsigned char> & value) const;
    bool GetValue(CVekRGBA<float> & value) const;
    bool GetValue(CVekVector4D<int> & value) const;
    bool GetValue(CVekVector4D<float> & value) const;
    bool GetValue(CVekVector4D<double> & value) const; ///< Read with that of floats.

private:
    friend class CVekXMLElement;
    friend class CVekXMLParser;
    friend struct vek::XMLEdit;
    friend class vek::XMLMaker;

    CVekXMLAttribute(CVekString<wchar_t> && name, CVekString<wchar_t> && value);
    static CVekXMLAttribute * Make(wchar_t const * name, int nameLength, wchar_t const * value, int valueLength);

    CVekString<wchar_t> m_name;
    CVekString<wchar_t> m_value;
};

/// The library's XML element. Destruction and RemoveAllChildren work through trees of any depth without recursion.
///
/// A host may derive from it: an object made by one of the public constructors is taken for the library's own wherever
/// an element is, and what it overrides is called (AddChild, AddAttribute, SetName and AddCDATASection by a parser that
/// reads into it as a root; Release and GetName by its parent). One that is made when memory is exhausted may be taken
/// for an element of a foreign implementation.
class VEK_API CVekXMLElement : public CVekRefCounted<IVekXMLElement>, public CVekPooled
{
public:
    CVekXMLElement();
    /// Makes an element of that name in one step.
    CVekXMLElement(wchar_t const * name, int nameLength);
    /// Shallow, kept: count, parent, children, attributes and CDATA bytes are shared without a reference of the copy's
    /// own, so that only one of the two may ever be destroyed.
    CVekXMLElement(CVekXMLElement const & other);
    /// Shallow as the copy constructor; what the target held is not released.
    CVekXMLElement & operator=(CVekXMLElement const & other);
    ~CVekXMLElement() override;

    /// Records the parent, not counted, when none is recorded yet; otherwise logs and keeps the old one.
    void SetParent(CVekXMLElement * parent);

    IVekXMLElement * GetParent() override;
    IVekXMLElement const * GetParent() const override;
    void SetName(wchar_t const * name) override;
    CVekString<wchar_t> const & GetName() const override;
    int GetNumChildren() const override;
    int AddChild(IVekXMLElement * child, int index) override;
    void RemoveChild(IVekXMLElement * child) override;
    void RemoveChild(wchar_t const * name) override;
    void RemoveChild(int index) override;
    void RemoveAllChildren() override;
    IVekXMLElement * GetChild(int index) override;
    IVekXMLElement const * GetChild(int index) const override;
    IVekXMLElement const * FindChild(wchar_t const * name) const override;
    IVekXMLElement * FindChild(wchar_t const * name, bool create) override;
    int GetNumAttributes() const override;
    int AddAttribute(wchar_t const * name, VEK_VARIANT const & value, int index) override;
    bool SetAttributeValue(wchar_t const * name, VEK_VARIANT const & value, bool add) override;
    bool SetAttributeValue(int index, VEK_VARIANT const & value) override;
    bool RenameAttribute(int index, wchar_t const * newName) override;
    bool RenameAttribute(wchar_t const * name, wchar_t const * newName) override;
    bool RemoveAttribute(wchar_t const * name) override;
    bool RemoveAttribute(int index) override;
    void RemoveAllAttributes() override;
    int FindAttributeIndex(wchar_t const * name) const override;
    CVekString<wchar_t> const & GetAttributeName(int index) const override;
    bool GetAttributeValue(wchar_t const * name, CVekVector4D<double> & value,
                           CVekVector4D<double> const & defaultValue) const override;
    bool GetAttributeValue(int index, CVekVector4D<double> & value,
                           CVekVector4D<double> const & defaultValue) const override;
    bool GetAttributeValue(wchar_t const * name, CVekVector4D<float> & value,
                           CVekVector4D<float> const & defaultValue) const override;
    bool GetAttributeValue(int index, CVekVector4D<float> & value,
                           CVekVector4D<float> const & defaultValue) const override;
    bool GetAttributeValue(wchar_t const * name, CVekVector4D<int> & value,
                           CVekVector4D<int> const & defaultValue) const override;
    bool GetAttributeValue(int index, CVekVector4D<int> & value, CVekVector4D<int> const & defaultValue) const override;
    bool GetAttributeValue(wchar_t const * name, CVekRGBA<float> & value,
                           CVekRGBA<float> const & defaultValue) const override;
    bool GetAttributeValue(int index, CVekRGBA<float> & value, CVekRGBA<float> const & defaultValue) const override;
    bool GetAttributeValue(wchar_t const * name, CVekRGBA<unsigned char> & value,
                           CVekRGBA<unsigned char> const & defaultValue) const override;
    bool GetAttributeValue(int index, CVekRGBA<unsigned char> & value,
                           CVekRGBA<unsigned char> const & defaultValue) const override;
    bool GetAttributeValue(wchar_t const * name, bool & value, bool defaultValue) const override;
    bool GetAttributeValue(int index, bool & value, bool defaultValue) const override;
    bool GetAttributeValue(wchar_t const * name, double & value, double defaultValue) const override;
    bool GetAttributeValue(int index, double & value, double defaultValue) const override;
    bool GetAttributeValue(wchar_t const * name, float & value, float defaultValue) const override;
    bool GetAttributeValue(int index, float & value, float defaultValue) const override;
    bool GetAttributeValue(wchar_t const * name, int & value, int defaultValue) const override;
    bool GetAttributeValue(int index, int & value, int defaultValue) const override;
    bool GetAttributeValue(int index, CVekString<wchar_t> & value, wchar_t const * defaultValue) const override;
    bool GetAttributeValue(wchar_t const * name, CVekString<wchar_t> & value,
                           wchar_t const * defaultValue) const override;
    CVekString<wchar_t> const & GetAttributeValue(int index) const override;
    bool AddCDATASection(unsigned char const * bytes, int size) override;
    int GetCDATASectionSize() const override;
    void RemoveCDATASection() override;
    bool HasCDATASection() const override;
    unsigned char const * GetCDATASection() const override;

private:
    friend class CVekXMLManager;
    friend class CVekXMLParser;
    friend struct vek::XMLEdit;
    friend class vek::XMLMaker;

    struct ChildNames;
    struct Tree;

    explicit CVekXMLElement(CVekString<wchar_t> && name);
    static CVekXMLElement * Make(wchar_t const * name, int nameLength);
    static CVekXMLAttribute * NewAttribute(wchar_t const * name, wchar_t const * text);
    void DestrotyChildren(); // Kept: spelled so.
    void DestroyAttributes();
    bool VariantToString(VEK_VARIANT const & value, CVekString<wchar_t> & text);
    int FindChildIndex(wchar_t const * name) const;
    void RemoveChildAt(int index);
    void Renamed();
    void RemoveSection();
    template <class T>
    bool ReadAttribute(int index, T & value, T const & defaultValue) const;
    template <class T>
    bool ReadAttribute(wchar_t const * name, T & value, T const & defaultValue) const;

    CVekString<wchar_t> m_name;
    CVekXMLElement * m_parent = nullptr;
    CVekPointerArray<CVekXMLElement> m_children;
    CVekPointerArray<CVekXMLAttribute> m_attributes;
    unsigned char * m_cdata = nullptr;
    // One field of 32 bits.
    bool m_hasCDATA = false;
    bool m_isKnownByAddress = false;
    bool m_isNameIndexed = false;
    bool m_isCDATAEmbedded = false;
    int m_cdataSize = 0;
};

/// What CVekXMLParser::SetKeepAll keeps of a file beyond elements, attributes and each element's CDATA section.
enum VEK_XML_KEEP : unsigned int
{
    VEK_XML_KEEP_NOTHING = 0,
    /// Text that is not only white space, as children named "#text"; references to entities that are not read, as
    /// children named "#entity-reference" that hold the entity's name.
    VEK_XML_KEEP_TEXT = 1,
    /// Text of white space alone, likewise.
    VEK_XML_KEEP_WHITE_SPACE = 2,
    /// Comments below the outermost element, as children named "#comment".
    VEK_XML_KEEP_COMMENTS = 4,
    /// Processing instructions there, as children named "#processing-instruction" whose attribute is "target".
    VEK_XML_KEEP_INSTRUCTIONS = 8,
    /// Where CDATA sections begin and end: as children named "#cdata-section", but for the section of an element that
    /// holds nothing else, which stays the element's own. Without it such sections are part of the text that is kept.
    VEK_XML_KEEP_CDATA = 16,
    /// What stands in front of the outermost element and behind it: see VekGetXMLProlog.
    VEK_XML_KEEP_PROLOG = 32,
    VEK_XML_KEEP_ALL = 63 ///< All of that.
};
/// Both.
constexpr VEK_XML_KEEP operator|(VEK_XML_KEEP left, VEK_XML_KEEP right) noexcept
{
    return static_cast<VEK_XML_KEEP>(static_cast<unsigned int>(left) | static_cast<unsigned int>(right));
}

/// Where an element stands in the bytes of its source, a byte order mark included.
struct VekXMLPosition
{
    /// The first byte of the start tag, and the tag's length in bytes.
    unsigned int offset;
    unsigned int length;
    /// The byte behind the element: behind its end tag, or behind the tag of an empty one. 0 when it never ended.
    unsigned int end;
    /// Where the start tag begins, both from 1. Columns count characters.
    unsigned int line;
    unsigned int column;
};

/// What was wrong with a document, or why it could not be read.
enum VEK_XML_ERROR : unsigned int
{
    VEK_XML_ERROR_NONE = 0,
    VEK_XML_ERROR_NOT_STARTED = 1,       ///< No parse yet, or no memory to begin one.
    VEK_XML_ERROR_NO_DOCUMENT = 2,       ///< The document is null, or its root of a foreign implementation.
    VEK_XML_ERROR_FILE = 3,              ///< The file can't be opened or read; systemCode tells why.
    VEK_XML_ERROR_TOO_LONG = 4,          ///< 2 GB or more, or a null text.
    VEK_XML_ERROR_MEMORY = 5,            ///< Memory is exhausted.
    VEK_XML_ERROR_EMPTY = 6,             ///< The text ends before its first element begins.
    VEK_XML_ERROR_ENDS_EARLY = 7,        ///< The text ends before its outermost element does.
    VEK_XML_ERROR_SYNTAX = 8,            ///< Not well-formed, in another way than those that follow.
    VEK_XML_ERROR_TOKEN = 9,             ///< Characters that have no place where they stand.
    VEK_XML_ERROR_TAG_MISMATCH = 10,     ///< An end tag that is not that of the open element.
    VEK_XML_ERROR_ATTRIBUTE_TWICE = 11,  ///< An element with two attributes of one name.
    VEK_XML_ERROR_BEHIND_ROOT = 12,      ///< Something behind the outermost element.
    VEK_XML_ERROR_UNKNOWN_ENTITY = 13,   ///< A reference to an entity that is not declared.
    VEK_XML_ERROR_ENTITY = 14,           ///< An entity that may not be used so: recursive, external, binary.
    VEK_XML_ERROR_CHARACTER_NUMBER = 15, ///< A reference to a character that XML has no place for.
    VEK_XML_ERROR_ENCODING = 16,         ///< An encoding that is not known, or not the one that is declared.
    VEK_XML_ERROR_LIMIT = 17             ///< Entities that expand beyond all measure.
};

/// What CVekXMLParser::GetError tells.
struct VekXMLError
{
    /// What was wrong.
    VEK_XML_ERROR code = VEK_XML_ERROR_NONE;
    unsigned int line = 0;       ///< From 1; 0 when there is no place to name, as when a file can't be opened.
    unsigned int column = 0;     ///< In characters, from 1.
    unsigned int offset = 0;     ///< In bytes, from 0.
    unsigned int systemCode = 0; ///< What GetLastError gives for it, where a file failed and the system told; else 0.
    bool isIncomplete = false;   ///< The text is good as far as it goes, but ends early. The parse gave true.
    wchar_t const * text = L"";  ///< In words, such as "mismatched tag". It stays the library's, for good.
};

/// The library's XML parser. IVekXMLManager::CreateXMLParser makes one; a host that wants the operations beyond the
/// interface makes its own.
class VEK_API CVekXMLParser : public CVekRefCounted<IVekXMLParser>
{
public:
    CVekXMLParser();
    CVekXMLParser(CVekXMLParser const &) = delete;
    CVekXMLParser & operator=(CVekXMLParser const &) = delete;
    ~CVekXMLParser() override;

    bool ParseXMLFile(wchar_t const * path, IVekXMLDocument * document) override;
    /// As ParseXMLFile, from bytes in memory, which are only read.
    bool ParseXMLMemory(void const * bytes, unsigned int size, IVekXMLDocument * document);
    /// True when the last parse succeeded and met the end of the outermost element: false tells of a file without any
    /// element, of one that ends early, and of a failure.
    bool IsComplete() const;
    /// Why IsComplete is false, and where: the code is VEK_XML_ERROR_NONE exactly when it is true. The place is that
    /// of the fault, or where a text that ends early has its last whole part behind it.
    VekXMLError GetError() const;

    /// From the next parse on keeps what the model has no place for, as children whose names begin with "#": their
    /// characters are their CDATA section. Attributes whose names differ only in case are all kept, and a newline in a
    /// value is stored as it is. Nothing at first. False when memory is exhausted.
    bool SetKeepAll(VEK_XML_KEEP keep);
    /// From the next parse on records where elements and values stand. Off at first. False when memory is exhausted.
    bool SetKeepPositions(bool keep);
    /// From the next parse on also reads the encodings that the system has a code page for; a parser that keeps
    /// anything does so anyway. Off at first. False when memory is exhausted.
    bool SetPlatformEncodings(bool use);
    /// Where an element of the last parse stood. False when positions weren't kept, for an element that the parse did
    /// not make, and for one that came out of an entity's text. Elements are known by their address: ask before the
    /// tree is changed.
    bool GetPosition(IVekXMLElement const * element, VekXMLPosition & position) const;
    /// The bytes of an attribute's value in the source, without its quotes. False as above, and for a value that is a
    /// declared default.
    bool GetAttributePosition(IVekXMLElement const * element, int index, unsigned int & offset,
                              unsigned int & length) const;
    /// The system's number for the encoding of the last parse's source, such as 65001 for UTF-8, 1200 and 1201 for
    /// UTF-16, little- and big-endian; 0 when nothing was parsed, or without any of the above.
    unsigned int GetSourceCodePage() const;

    /// @cond internal
    struct Options;
    struct State;
    /// @endcond

private:
    template <class Source>
    bool ParseDocument(IVekXMLDocument * document, Source source);
    Options * ChangeOptions();

    State * m_state;
};

/// What a writer that keeps all writes.
enum VEK_XML_ENCODING : unsigned int
{
    /// What the document was read from; UTF-8 for a new document, and for one with a character that this encoding
    /// lacks where no reference can stand, as in a name or a comment.
    VEK_XML_ENCODING_AS_SOURCE = 0,
    VEK_XML_ENCODING_UTF8 = 1, ///< Without a byte order mark.
                               /// With a byte order mark.
    VEK_XML_ENCODING_UTF8_MARK = 2,
    /// Little- and big-endian, with a byte order mark.
    VEK_XML_ENCODING_UTF16 = 3,
    VEK_XML_ENCODING_UTF16_BIG = 4
};

/// Why a document was not written.
enum VEK_XML_WRITE_ERROR : unsigned int
{
    VEK_XML_WRITE_ERROR_NONE = 0,
    VEK_XML_WRITE_ERROR_NO_DOCUMENT = 1, ///< The document or the stream is null, or the document has no root.
    VEK_XML_WRITE_ERROR_MEMORY = 2,      ///< Memory is exhausted.
    VEK_XML_WRITE_ERROR_FILE = 3,        ///< The file can't be opened or written; systemCode tells why.
    VEK_XML_WRITE_ERROR_STREAM = 4,      ///< The stream didn't take everything.
    // With all that is kept alone, and before anything is written: what no parser could read.
    VEK_XML_WRITE_ERROR_NAME = 5,            ///< A name that is none.
    VEK_XML_WRITE_ERROR_CHARACTER = 6,       ///< A character that XML has no place for, or half of one.
    VEK_XML_WRITE_ERROR_ATTRIBUTE_TWICE = 7, ///< An element with two attributes of one name.
    VEK_XML_WRITE_ERROR_COMMENT = 8,         ///< A comment with "--" in it, or "-" at its end.
    VEK_XML_WRITE_ERROR_INSTRUCTION = 9,     ///< A processing instruction without target, or with its own end in it.
    VEK_XML_WRITE_ERROR_NODE = 10,           ///< Children or attributes of what isn't an element.
    VEK_XML_WRITE_ERROR_PROLOG = 11          ///< Prolog or epilog is none, or an entity referred to is not declared.
};

/// What CVekXMLWriter::GetError tells.
struct VekXMLWriteError
{
    /// What was wrong.
    VEK_XML_WRITE_ERROR code = VEK_XML_WRITE_ERROR_NONE;
    unsigned int systemCode = 0; ///< What GetLastError gives for it, where a file failed and the system told; else 0.
    wchar_t const * text = L"";  ///< In words, such as "name can not be written". It stays the library's, for good.
    /// What could not be written: a name, cut when it is long, or a character as "U+0001"; else empty. The writer's,
    /// until it writes again.
    wchar_t const * what = L"";
};

/// The library's XML writer. IVekXMLManager::CreateXMLWriter makes one; a host that wants the operations beyond the
/// interface makes its own.
class VEK_API CVekXMLWriter : public CVekRefCounted<IVekXMLWriter>
{
public:
    CVekXMLWriter();
    CVekXMLWriter(CVekXMLWriter const &) = delete;
    CVekXMLWriter & operator=(CVekXMLWriter const &) = delete;
    ~CVekXMLWriter() override;

    void SetIndentation(int spaces) override;
    int GetIndentation() const override;
    bool WriteXMLFile(wchar_t const * path, IVekXMLDocument * document) override;
    bool WriteXML(IVekIOStream * stream, IVekXMLDocument * document) override;

    /// Writes children whose names begin with "#" as what they stand for, the document's prolog and epilog, and all
    /// values so that any parser reads them back as they are. No white space is added, unless SetIndentation was
    /// called: then around the children of elements without text. What can't be written is told, with false, before the
    /// file is opened. Off at first.
    void SetKeepAll(bool keep);
    /// The encoding that such a document is written in; VEK_XML_ENCODING_AS_SOURCE at first.
    void SetKeepAllEncoding(VEK_XML_ENCODING encoding);
    /// Why the last write gave false; the code is VEK_XML_WRITE_ERROR_NONE when it gave true, and before the first one.
    VekXMLWriteError GetError() const;

private:
    bool Fail(VEK_XML_WRITE_ERROR code, unsigned int systemCode = 0);
    void SetEncodingType(wchar_t const * name);
    bool WriteFilePlain(wchar_t const * path, IVekFileIOStream & stream, IVekXMLDocument & document);
    bool WriteFileWhole(wchar_t const * path, IVekFileIOStream & stream, IVekXMLDocument & document);
    bool WritePlain(IVekIOStream & stream, IVekXMLDocument & document, bool carriageReturns);

    int m_indentation = 3;
    int m_encodingType = 1;
    CVekString<wchar_t> m_encodingName; // or, where all is kept, what could not be written
    unsigned int m_systemCode = 0;
    unsigned char m_error = 0;
    unsigned char m_keepAllEncoding = 0;
    bool m_keepAll = false;
    bool m_isIndented = false;
};

/// What stands in front of the outermost element of a document's file, and behind it: XML declaration, document type
/// with its internal subset, comments, processing instructions and white space, as in the file, each line's end a
/// newline. A parser with VEK_XML_KEEP_PROLOG stores them. Empty for other documents.
VEK_API CVekString<wchar_t> const & VekGetXMLProlog(IVekXMLDocument const & document);
VEK_API CVekString<wchar_t> const & VekGetXMLEpilog(IVekXMLDocument const & document);
/// Store copies; what they hold is checked when they are written. Null empties. False for a document of a foreign
/// implementation, and when memory is exhausted.
VEK_API bool VekSetXMLProlog(IVekXMLDocument & document, wchar_t const * text);
VEK_API bool VekSetXMLEpilog(IVekXMLDocument & document, wchar_t const * text);

VEK_HEADER_END

#endif
