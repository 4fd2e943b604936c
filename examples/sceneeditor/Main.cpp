// A scene editor's document: opened whole or not at all, changed with undo and redo, and saved without ever losing the
// old file:
//     example_sceneeditor SCENE COMMAND...
// The commands: move NAME "X, Y, Z", rename NAME NEW, copy NAME NEW, delete NAME, unset NAME ATTRIBUTE, undo, redo,
// list, save FILE. NAME is an element's attribute of that name.
#include <VekLib.h>
#include <VekStd.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

class SceneDocument
{
public:
    explicit SceneDocument(wchar_t const * path) : m_document(VekLoadXMLDocument(path)) {}
    bool IsOpen() const { return m_document != nullptr; }
    bool Save(wchar_t const * path) const { return VekSaveXMLDocument(path, m_document.Get()); }

    IVekXMLElement & Root() const { return *m_document->GetRootElement(); }

    /// Finds the element of that name and changes it and its parent, to be undone in one step; after a failure all is
    /// as it was.
    bool Change(wchar_t const * name, std::function<bool(IVekXMLElement &, IVekXMLElement &)> const & change)
    {
        Snapshot before{VekCloneXMLElement(&Root())};
        auto walk = VekDescendants(Root());
        for (IVekXMLElement & element : walk)
        {
            if (!before || VekAttributeText(element, L"name") != name)
                continue;
            // What the change removes lives until it is done.
            auto const kept = Snapshot::Share(&element);
            if (!change(element, walk.GetParent()))
            {
                m_document->SetRootElement(before.Get());
                return false;
            }
            m_undo.push_back(std::move(before));
            m_redo.clear();
            return true;
        }
        return false;
    }
    bool Undo() { return Step(m_undo, m_redo); }
    bool Redo() { return Step(m_redo, m_undo); }

private:
    using Snapshot = CVekRef<IVekXMLElement>;

    bool Step(std::vector<Snapshot> & from, std::vector<Snapshot> & to)
    {
        if (from.empty())
            return false;
        to.push_back(Snapshot::Share(&Root()));
        bool const isSet = m_document->SetRootElement(from.back().Get());
        from.pop_back();
        return isSet;
    }

    CVekRef<IVekXMLDocument> const m_document; // null when it can't be read whole
    std::vector<Snapshot> m_undo, m_redo;
};

static bool Move(IVekXMLElement & element, wchar_t const * by)
{
    CVekVector4D<double> origin(0, 0, 0, 1);
    CVekVector3D<double> offset;
    if (!VekReadXMLAttribute(element, L"origin", origin) || !VekFromText(by, offset))
        return false;
    origin += CVekVector4D<double>(offset, 0);
    return element.SetAttributeValue(L"origin", VekToText(origin), false); // exact, and as short as can be
}

static bool Copy(IVekXMLElement const & element, IVekXMLElement & parent, wchar_t const * name)
{
    CVekRef<IVekXMLElement> const copy{VekCloneXMLElement(&element)};
    return copy && copy->SetAttributeValue(L"name", name, true) && parent.AddChild(copy.Get(), -1) >= 0;
}

static bool List(SceneDocument const & scene)
{
    auto walk = VekDescendants(scene.Root());
    for (IVekXMLElement const & element : walk)
    {
        std::wstring line(2 * walk.GetDepth(), L' ');
        line += VekView(element.GetName());
        for (auto const & [name, value, index] : VekAttributes(element))
            line.append(L" ").append(VekView(name)).append(L"=").append(VekView(value));
        std::puts(VekUtf8FromWide(line).value_or("(no text)").c_str());
    }
    return !walk.IsOutOfMemory();
}

/// Runs one command, which is taken off the arguments with all that belongs to it.
static bool Run(SceneDocument & scene, std::vector<wchar_t const *> & arguments)
{
    auto const take = [&arguments]
    {
        wchar_t const * const first = arguments.empty() ? L"" : arguments.front();
        if (!arguments.empty())
            arguments.erase(arguments.begin());
        return first;
    };
    std::wstring_view const command = take();
    if (command == L"undo")
        return scene.Undo();
    if (command == L"redo")
        return scene.Redo();
    if (command == L"list")
        return List(scene);
    wchar_t const * const subject = take();
    if (command == L"save")
        return scene.Save(subject);
    if (command == L"delete")
        return scene.Change(subject, [](auto & element, auto & parent) { return parent.RemoveChild(&element), true; });
    wchar_t const * const text = take();
    if (command == L"move")
        return scene.Change(subject, [=](auto & element, auto &) { return Move(element, text); });
    if (command == L"rename")
        return scene.Change(subject,
                            [=](auto & element, auto &) { return element.SetAttributeValue(L"name", text, false); });
    if (command == L"copy")
        return scene.Change(subject, [=](auto & element, auto & parent) { return Copy(element, parent, text); });
    if (command == L"unset")
        return scene.Change(subject, [=](auto & element, auto &) { return VekRemoveXMLAttribute(&element, text); });
    return false;
}

int wmain(int count, wchar_t ** arguments)
{
    CVekLibrary const library;
    if (count < 2 || !library)
        return 2;
    SceneDocument scene(arguments[1]);
    if (!scene.IsOpen())
    {
        std::puts("the scene can't be read");
        return 1;
    }
    std::vector<wchar_t const *> commands(arguments + 2, arguments + count);
    while (!commands.empty())
    {
        std::wstring const command = commands.front();
        if (!Run(scene, commands))
        {
            std::printf("%ls: can't be done\n", command.c_str());
            return 1;
        }
    }
    return 0;
}
