#include "ui/Browse.h"

#include "platform/FolderList.h"
#include "ui/server/BrowseHandlers.h"
#include "ui_Browse.h"

namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr int kFilledRole = Qt::UserRole + 1;

QString ItemPath(const QTreeWidgetItem* item) {
    return item ? item->data(0, kPathRole).toString() : QString();
}

} // namespace

Browse::Browse(Setup& setup) : setup(setup), ui(std::make_unique<Ui::Browse>()) {
    ui->setupUi(this);
    auto* b = this;
    connect(ui->Drive1, &QComboBox::currentIndexChanged, this, [b](int index) {
        if (index >= 0)
            Drive1_Change(*b);
    });
    connect(ui->Dir1, &QTreeWidget::itemExpanded, this,
            [b](QTreeWidgetItem* item) { b->FillItem(item); });
    connect(ui->Dir1, &QTreeWidget::currentItemChanged, this, [b] { Dir1_Change(*b); });
    connect(ui->CMDOK, &QAbstractButton::clicked, this, [b] { Browse_CMDOK_Click(*b); });
    connect(ui->CMDCancel, &QAbstractButton::clicked, this, [b] { Browse_CMDCancel_Click(*b); });
}

Browse::~Browse() = default;

QString Browse::Path() const {
    return ItemPath(ui->Dir1->currentItem());
}

void Browse::SetPath(const QString& folder) {
    QTreeWidget* tree = ui->Dir1;
    const QSignalBlocker quiet(tree);
    tree->clear();
    auto* top = new QTreeWidgetItem(tree, {folder});
    top->setData(0, kPathRole, folder);
    top->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    FillItem(top);
    top->setExpanded(true);
    tree->setCurrentItem(top);
    Dir1_Change(*this);
}

void Browse::FillItem(QTreeWidgetItem* item) {
    if (item->data(0, kFilledRole).toBool())
        return;
    item->setData(0, kFilledRole, true);
    const QString folder = FolderText(ItemPath(item));
    const QStringList names = ListFolders(folder);
    for (const QString& name : names) {
        auto* child = new QTreeWidgetItem(item, {name});
        child->setData(0, kPathRole, folder + name);
        child->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    }
    // A folder without sub-folders, or one that cannot be read, shows no expander.
    item->setChildIndicatorPolicy(names.isEmpty() ? QTreeWidgetItem::DontShowIndicator
                                                  : QTreeWidgetItem::ShowIndicator);
}
