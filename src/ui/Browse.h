#pragma once

#include "ui/ButtonsOnlyWindow.h"

#include <memory>

namespace Ui {
class Browse;
}
class QTreeWidgetItem;
class Setup;

// "Browse": the operator picks the game directory from the drives and folders of the
// machine; only a folder holding the game executable can be taken.
class Browse : public ButtonsOnlyWindow {
    Q_OBJECT
public:
    explicit Browse(Setup& setup);
    ~Browse() override;

    Setup& setup;
    std::unique_ptr<Ui::Browse> ui;

    // The folder open in Dir1.
    QString Path() const;
    // Shows `folder` in Dir1, its sub-folders below it, and opens it.
    void SetPath(const QString& folder);

private:
    // Lists the sub-folders of a folder item the first time it is expanded.
    void FillItem(QTreeWidgetItem* item);
};
