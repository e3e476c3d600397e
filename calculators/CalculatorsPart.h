#pragma once
// The menu "Калькуляторы" of the main window: "Расчет строительных смесей" (MExpenseMix, the mix
// calculator, whose "В смету" adds bags to the estimate's materials) and "Площади фигур" (MSfigure,
// the plug-in square_shapes.so, fetched from the file server on first use with the main window's
// progress bar).

#include "ui/MainShell.h"

class QAction;

class CalculatorsPart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;

    void MExpenseMixClick();
    void MSfigureClick();
    // A material "name, меш., bags" at the end of the estimate's materials; false with *error.
    bool addBagsToEstimate(const QString &name, const QString &bags, QString *error);
    // The folder of IniFile.db, where the plug-in is kept.
    QString pluginFolder() const;

signals:
    // The plug-in's download ended (shown or refused).
    void pluginDownloadFinished(bool ok);

private:
    void showPlugin();
    void downloadPlugin();

    MainShell *m_shell = nullptr;
    QAction *m_figures = nullptr;
};
