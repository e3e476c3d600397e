#pragma once
// The editors beside the rate grid, as tool buttons of the rate panel: the resources of the chosen rate
// ("Ресурсы", TResurse), the copying of the current list into another ("Копировать текущие расценки в
// ...", TCopyRas), the note to the price lists ("Редактировать примечание к расценкам", TRedPrimRas),
// and the offer to fill an empty server list when connecting (TCreateRasVirn).

#include "PriceCopy.h"
#include "ui/MainShell.h"

class PricePart;
class QAction;

class ResourcesPart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;

    void ToolResursClick();
    void ToolCopyRasClick();
    void ToolPrimRasClick();
    // After connecting: an empty server list may be filled from a local one.
    void offerServerFill();

    QAction *ToolResurs = nullptr;
    QAction *ToolCopyRas = nullptr;
    QAction *ToolPrimRas = nullptr;

private:
    // The list the rate grid shows; false (the user was told) when it shows none.
    bool currentList(PriceCopy::List *list);
    bool copyList(PriceCopy::List from, PriceCopy::List to);

    MainShell *m_shell = nullptr;
    PricePart *m_price = nullptr;
};
