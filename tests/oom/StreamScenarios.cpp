#include "oom/StreamScenarios.h"

namespace
{

bool WriteDocument(IVekIOStream & stream)
{
    IVekXMLManager & manager = *getVekLibKernel()->GetXMLManager();
    Released<IVekXMLDocument> const document(manager.CreateXMLDocument());
    Released<IVekXMLElement> const root(manager.CreateXMLElement());
    document->SetRootElement(root.Get());
    // More than what the writer collects before it writes.
    for (int i = 0; i < 10000; ++i)
        root->AddChild(Released<IVekXMLElement>(manager.CreateXMLElement()).Get(), -1);
    return Released<IVekXMLWriter>(manager.CreateXMLWriter())->WriteXML(&stream, document.Get());
}

} // namespace

std::vector<StreamScenario> const streamScenarios = {
    {"WriteDocument", WriteDocument, nullptr},
};
