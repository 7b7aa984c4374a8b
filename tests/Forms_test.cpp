// What an operator notices in every window's form: captions that fit and can be read, where
// the keyboard focus starts, Enter pressing only the focused button, no resizing, and fields
// that stop at the length the store keeps.
#include "ui/Hostwarden.h"
#include "ui_About.h"
#include "ui_Browse.h"
#include "ui_CopyConfig.h"
#include "ui_Hostwarden.h"
#include "ui_Mods.h"
#include "ui_MsgRate.h"
#include "ui_NewConf.h"
#include "ui_Setup.h"
#include "ui_ShippedMaps.h"
#include "ui_Text_Rate.h"

#include <QFontInfo>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace {

// Room a push button needs around its caption inside the style's contents rectangle, and a
// line edit on each side of its text.
constexpr int kButtonMargin = 2;
constexpr int kLineEditMargin = 2;

template <class Form> std::unique_ptr<QWidget> make() {
    auto window = std::make_unique<QWidget>();
    Form().setupUi(window.get());
    return window;
}

struct Window {
    const char* name;
    std::unique_ptr<QWidget> (*make)();
    QStringList focusOrder;                  // its start: where the focus goes first, then Tab
    QList<QPair<const char*, int>> max = {}; // fields and the length the store keeps
};

// clang-format off
const QList<Window> kWindows = {
    {"Hostwarden", make<Ui::Hostwarden>, {"OPTCTF", "OPTDM", "OPTTDM", "TXTConfName", "TXTServName",
                                          "TXTPassword", "TXTRconPass", "CMDLaunch", "CMDAbout"},
                                         {{"TXTMess_0", 255}, {"TXTMess_3", 255}}},
    {"Setup", make<Ui::Setup>, {"TXTRFLocate"}},
    {"Browse", make<Ui::Browse>, {"Drive1"}},
    {"ShippedMaps", make<Ui::ShippedMaps>, {"LSTSHMaps"}},
    {"About", make<Ui::About>, {"CMDOK"}},
    {"Mods", make<Ui::Mods>, {"LSTMod"}},
    {"NewConf", make<Ui::NewConf>, {"TXTNewName"}, {{"TXTNewName", 16}}},
    {"CopyConfig", make<Ui::CopyConfig>, {"CMDCancel"}, {{"TXTNewName", 16}}},
    {"Text_Rate", make<Ui::Text_Rate>, {"SlideTextRate"}},
    {"MsgRate", make<Ui::MsgRate>, {"SLDMsgRate"}},
};
// clang-format on

// The caption a control shows on one line, if it has one.
QString captionOf(const QWidget* w) {
    auto* label = qobject_cast<const QLabel*>(w);
    if (label && !label->wordWrap())
        return label->text();
    return qobject_cast<const QAbstractButton*>(w) ? w->property("text").toString() : QString();
}

// Where a caption's text is drawn, in the window's coordinates.
QRect captionArea(QWidget* w) {
    QRect contents = w->contentsRect();
    Qt::Alignment align = Qt::AlignLeft | Qt::AlignVCenter;
    if (auto* label = qobject_cast<QLabel*>(w)) {
        align = label->alignment();
    } else {
        QStyleOptionButton opt;
        opt.initFrom(w);
        opt.text = captionOf(w);
        const bool button = qobject_cast<QPushButton*>(w);
        contents = w->style()->subElementRect(button ? QStyle::SE_PushButtonContents
                                              : qobject_cast<QCheckBox*>(w)
                                                  ? QStyle::SE_CheckBoxContents
                                                  : QStyle::SE_RadioButtonContents,
                                              &opt, w);
        if (button) {
            contents.adjust(kButtonMargin, 0, -kButtonMargin, 0);
            align = Qt::AlignCenter;
        }
    }
    const QFontMetrics fm(w->font());
    const QSize size(fm.horizontalAdvance(captionOf(w)), fm.height());
    return QStyle::alignedRect(Qt::LeftToRight, align, size, contents).translated(w->pos());
}

// Every reason a caption of the window would show cut off, one line each.
QStringList captionsCutOff(QWidget* window) {
    QStringList faults;
    auto controls = window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    // Plain frames only draw the lines that divide a window; they hide no caption.
    controls.removeIf(
        [](QWidget* w) { return w->metaObject()->className() == QByteArray("QFrame"); });
    for (qsizetype i = 0; i < controls.size(); ++i) {
        QWidget* w = controls[i];
        const QString where = w->objectName() + ": ", caption = captionOf(w);
        const QFontMetrics fm(w->font());
        auto* label = qobject_cast<QLabel*>(w);
        if (label && label->wordWrap() && label->heightForWidth(label->width()) > label->height())
            faults << where + "wrapped text needs more height";
        if (auto* combo = qobject_cast<QComboBox*>(w); combo && combo->isEditable()) {
            QStyleOptionComboBox opt;
            opt.initFrom(combo);
            opt.editable = true;
            const QRect field = combo->style()->subControlRect(QStyle::CC_ComboBox, &opt,
                                                               QStyle::SC_ComboBoxEditField, combo);
            if (fm.horizontalAdvance(combo->currentText()) + 2 * kLineEditMargin > field.width())
                faults << where + combo->currentText() + " is wider than its field";
        }
        if (caption.isEmpty())
            continue;
        const QRect area = captionArea(w);
        const int margin = qobject_cast<QPushButton*>(w) ? kButtonMargin : 0;
        if (area.left() < w->x() + margin || area.right() >= w->x() + w->width() - margin)
            faults << where + caption + " is wider than its control";
        if (fm.height() > w->height())
            faults << where + "the font is higher than the control";
        // Controls created later lie on top of this one.
        for (QWidget* above : controls.mid(i + 1))
            if (above->geometry().intersects(area))
                faults << where + caption + " lies under " + above->objectName();
    }
    return faults;
}

TEST(Forms, WhatTheOperatorSeesInEveryWindow) {
    // DejaVu Sans is a wide face: at 7 points every caption fits; at 7.5 "Game Password:",
    // "Original Name:" and the "Combo1" of every narrow drop-down are cut off, at 8 a dozen more.
    ASSERT_EQ(QFontInfo(QApplication::font()).family(), "DejaVu Sans")
        << "the font the windows are laid out for is installed";
    for (const Window& f : kWindows) {
        SCOPED_TRACE(f.name);
        auto window = f.make();
        window->ensurePolished();
        EXPECT_EQ(captionsCutOff(window.get()).join('\n').toStdString(), "");
        EXPECT_FALSE(window->minimumSize().isEmpty());
        EXPECT_EQ(window->minimumSize(), window->maximumSize()) << "the window cannot be resized";
        for (auto* button : window->findChildren<QPushButton*>())
            EXPECT_FALSE(button->isDefault() || button->autoDefault())
                << button->objectName().toStdString();
        for (const auto& [field, limit] : f.max) {
            auto* edit = window->findChild<QLineEdit*>(field);
            edit->clear();
            QTest::keyClicks(edit, QString(limit + 1, 'x'));
            EXPECT_EQ(edit->text().size(), limit) << field;
        }

        QStringList order;
        for (QWidget* w = window->nextInFocusChain(); w != window.get(); w = w->nextInFocusChain())
            if (w->parentWidget() == window.get() && (w->focusPolicy() & Qt::TabFocus) &&
                !order.contains(w->objectName()))
                order << w->objectName();
        EXPECT_EQ(order.mid(0, f.focusOrder.size()), f.focusOrder);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), f.focusOrder.front());
    }
    auto main = make<Ui::Hostwarden>();
    EXPECT_FALSE(main->findChild<QLabel*>("Image1")->pixmap().isNull()) << "the banner shows";
    EXPECT_FALSE(main->windowIcon().isNull());
    EXPECT_EQ(HostwardenIcon().availableSizes(), QList<QSize>({{16, 16}, {32, 32}}));
}

} // namespace
