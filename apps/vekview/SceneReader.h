#pragma once

#include "ElementReader.h"

#include <map>

namespace tool
{

/// Turns a document into a scene: <scene> with any number of <curve>, <box>, <triangle> and <grid> and one <camera>.
class SceneReader
{
public:
    /// Adds what the document describes to the scene; tells what is wrong with it.
    static Problems Read(IVekXMLDocument & document, Scene & scene);

private:
    explicit SceneReader(Scene & scene) : m_scene(scene) {}

    void ReadElement(IVekXMLElement & element);
    void ReadCamera(ElementReader & reader);
    void ReadGrid(ElementReader & reader);
    void ReadBox(ElementReader & reader);
    void ReadTriangle(ElementReader & reader, unsigned int number);

    Scene & m_scene;
    Problems m_problems;
    std::map<std::wstring, unsigned int> m_counts; // of elements by name
};

} // namespace tool
