// An element that a host implements itself: its own children and name, nothing else.
#pragma once

#include "VekXML.h"

class ForeignElement : public IVekXMLElement
{
public:
    explicit ForeignElement(wchar_t const * name = L"") : ForeignElement(new CVekXMLElement, name) {}
    // Keeps its children and its name in an element of its own, which it takes over.
    ForeignElement(IVekXMLElement * inner, wchar_t const * name) : m_inner(inner) { m_inner->SetName(name); }
    virtual ~ForeignElement() { m_inner->Release(); }

    // By its own hand: CVekRefCounted<IVekXMLElement> may be an import.
    unsigned int AddRef() override { return ++m_count; }
    unsigned int Release() override
    {
        unsigned int const count = --m_count;
        if (count == 0)
            delete this;
        return count;
    }
    unsigned int GetRefCount() const override { return m_count; }

    IVekXMLElement * GetParent() override { return nullptr; }
    IVekXMLElement const * GetParent() const override { return nullptr; }
    void SetName(wchar_t const * name) override { m_inner->SetName(name); }
    CVekString<wchar_t> const & GetName() const override { return m_inner->GetName(); }
    int GetNumChildren() const override { return m_inner->GetNumChildren(); }
    int AddChild(IVekXMLElement * child, int index) override { return m_inner->AddChild(child, index); }
    void RemoveChild(IVekXMLElement * child) override { m_inner->RemoveChild(child); }
    void RemoveChild(wchar_t const * name) override { m_inner->RemoveChild(name); }
    void RemoveChild(int index) override { m_inner->RemoveChild(index); }
    void RemoveAllChildren() override { m_inner->RemoveAllChildren(); }
    IVekXMLElement * GetChild(int index) override { return m_inner->GetChild(index); }
    IVekXMLElement const * GetChild(int index) const override { return m_inner->GetChild(index); }
    IVekXMLElement const * FindChild(wchar_t const * name) const override { return m_inner->FindChild(name, false); }
    IVekXMLElement * FindChild(wchar_t const * name, bool) override { return m_inner->FindChild(name, false); }
    int GetNumAttributes() const override { return 0; }
    int AddAttribute(wchar_t const *, VEK_VARIANT const &, int) override { return -1; }
    bool SetAttributeValue(wchar_t const *, VEK_VARIANT const &, bool) override { return false; }
    bool SetAttributeValue(int, VEK_VARIANT const &) override { return false; }
    bool RenameAttribute(int, wchar_t const *) override { return false; }
    bool RenameAttribute(wchar_t const *, wchar_t const *) override { return false; }
    bool RemoveAttribute(wchar_t const *) override { return false; }
    bool RemoveAttribute(int) override { return false; }
    void RemoveAllAttributes() override {}
    int FindAttributeIndex(wchar_t const *) const override { return -1; }
    CVekString<wchar_t> const & GetAttributeName(int) const override { return GetName(); }
    CVekString<wchar_t> const & GetAttributeValue(int) const override { return GetName(); }
    bool AddCDATASection(unsigned char const *, int) override { return false; }
    int GetCDATASectionSize() const override { return 0; }
    void RemoveCDATASection() override {}
    bool HasCDATASection() const override { return false; }
    unsigned char const * GetCDATASection() const override { return nullptr; }
    // clang-format off
#define FOREIGN_GETTERS(Value, Default)                                                                                \
    bool GetAttributeValue(wchar_t const *, Value &, Default) const override { return false; }                         \
    bool GetAttributeValue(int, Value &, Default) const override { return false; }
    FOREIGN_GETTERS(CVekVector4D<double>, CVekVector4D<double> const &)
    FOREIGN_GETTERS(CVekVector4D<float>, CVekVector4D<float> const &)
    FOREIGN_GETTERS(CVekVector4D<int>, CVekVector4D<int> const &)
    FOREIGN_GETTERS(CVekRGBA<float>, CVekRGBA<float> const &)
    FOREIGN_GETTERS(CVekRGBA<unsigned char>, CVekRGBA<unsigned char> const &)
    FOREIGN_GETTERS(bool, bool)
    FOREIGN_GETTERS(double, double)
    FOREIGN_GETTERS(float, float)
    FOREIGN_GETTERS(int, int)
    FOREIGN_GETTERS(CVekString<wchar_t>, wchar_t const *)
#undef FOREIGN_GETTERS
    // clang-format on

private:
    unsigned int m_count = 1;
    IVekXMLElement * m_inner;
};
