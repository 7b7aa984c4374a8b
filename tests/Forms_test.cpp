// What an operator notices in every window's form: captions that fit and can be read, where
// the keyboard focus starts, Enter pressing only the focused button, no resizing, and fields
// that stop at the length the store keeps.
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
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

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
    std::function<std::unique_ptr<QWidget>()> make;
    std::vector<const char*> focusOrder;          // the start of the keyboard focus order
    std::vector<std::pair<const char*, int>> max = {}; // fields and the length the store keeps
};

// clang-format off
const std::vector<Window> kWindows = {
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

QString captionOf(const QWidget* w) {
    auto* label = qobject_cast<const QLabel*>(w);
    if (label && !label->wordWrap())
        return label->text();
    return qobject_cast<const QAbstractButton*>(w) ? w->property("text").toString() : QString();
}

// Where a caption's text is drawn inside its widget, in the widget's coordinates.
QRect captionArea(QWidget* w) {
    QRect contents;
    Qt::Alignment align = Qt::AlignLeft | Qt::AlignVCenter;
    if (auto* label = qobject_cast<QLabel*>(w)) {
        contents = label->contentsRect();
        align = label->alignment();
    } else {
        QStyleOptionButton opt;
        opt.initFrom(w);
        opt.text = captionOf(w);
        const auto element = qobject_cast<QPushButton*>(w) ? QStyle::SE_PushButtonContents
                             : qobject_cast<QCheckBox*>(w) ? QStyle::SE_CheckBoxContents
                                                           : QStyle::SE_RadioButtonContents;
        contents = w->style()->subElementRect(element, &opt, w);
        if (qobject_cast<QPushButton*>(w)) {
            contents.adjust(kButtonMargin, 0, -kButtonMargin, 0);
            align = Qt::AlignCenter;
        }
    }
    const QFontMetrics fm(w->font());
    return QStyle::alignedRect(Qt::LeftToRight, align,
                               QSize(fm.horizontalAdvance(captionOf(w)), fm.height()), contents);
}

// What a control paints over whatever lies beneath it: a check box or label only its
// indicator and text, a frame's lines nothing that matters.
QRect coverOf(QWidget* w) {
    if (w->metaObject()->className() == QByteArray("QFrame"))
        return {};
    if (captionOf(w).isEmpty() || qobject_cast<QPushButton*>(w))
        return w->geometry();
    const QRect text = captionArea(w).translated(w->pos());
    return text.united(QRect(w->x(), text.top(), text.left() - w->x(), text.height()));
}

// Every reason a caption of the window would show cut off, one line each.
QStringList captionsCutOff(QWidget* window) {
    QStringList faults;
    const auto controls = window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (qsizetype i = 0; i < controls.size(); ++i) {
        QWidget* w = controls[i];
        const QString where = w->objectName() + ": ";
        const QFontMetrics fm(w->font());
        auto* label = qobject_cast<QLabel*>(w);
        if (label && label->wordWrap() && label->heightForWidth(label->width()) > label->height())
            faults << where + "wrapped text needs more height";
        if (auto* combo = qobject_cast<QComboBox*>(w); combo && combo->isEditable()) {
            QStyleOptionComboBox opt;
            opt.initFrom(combo);
            opt.editable = true;
            opt.frame = combo->hasFrame();
            const QRect field = combo->style()->subControlRect(QStyle::CC_ComboBox, &opt,
                                                               QStyle::SC_ComboBoxEditField, combo);
            if (fm.horizontalAdvance(combo->currentText()) + 2 * kLineEditMargin > field.width())
                faults << where + combo->currentText() + " is wider than the edit field";
        }
        if (captionOf(w).isEmpty())
            continue;
        const QRect area = captionArea(w);
        const bool button = qobject_cast<QPushButton*>(w);
        const int left = button  ? kButtonMargin
                         : label ? label->contentsRect().left()
                                 : area.left();
        if (area.left() < left || area.right() > w->width() - 1 - (button ? kButtonMargin : 0))
            faults << where + captionOf(w) + " is wider than its control";
        if (fm.height() > w->height())
            faults << where + "the font is higher than the control";
        // Controls created later lie on top of this one.
        for (qsizetype j = i + 1; j < controls.size(); ++j)
            if (coverOf(controls[j]).intersects(area.translated(w->pos())))
                faults << where + captionOf(w) + " lies under " + controls[j]->objectName();
    }
    return faults;
}

TEST(Forms, WhatTheOperatorSeesInEveryWindow) {
    // DejaVu Sans is a wide face: at 7 points every caption fits; at 7.5 "Game Password:" and
    // "Original Name:" are cut off, at 8 a dozen more and the "Combo1" of every narrow drop-down.
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

        QStringList order, start(f.focusOrder.begin(), f.focusOrder.end());
        for (QWidget* w = window->nextInFocusChain(); w != window.get(); w = w->nextInFocusChain())
            if (w->parentWidget() == window.get() && (w->focusPolicy() & Qt::TabFocus) &&
                !order.contains(w->objectName()))
                order << w->objectName();
        EXPECT_EQ(order.mid(0, start.size()), start);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), start.front());
    }
    auto main = make<Ui::Hostwarden>();
    EXPECT_FALSE(main->findChild<QLabel*>("Image1")->pixmap().isNull()) << "the banner shows";
    EXPECT_FALSE(main->windowIcon().isNull());
}

} // namespace
