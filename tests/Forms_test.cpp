// What an operator notices in every window's form: captions that fit and can be read, where
// the keyboard focus starts, Enter pressing only the focused button, no resizing, and fields
// that stop at the length the store keeps.
#include "MainWindow.h"

#include "ui/Hostwarden.h"
#include "ui/Setup.h"
#include "ui/WindowRegistry.h"
#include "ui/server/SetupHandlers.h"
#include "ui_Hostwarden.h"

#include <QFontInfo>
#include <QScreen>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QTest>
#include <gtest/gtest.h>

namespace {

// Room a push button needs around its caption inside the style's contents rectangle, and a
// line edit on each side of its text.
constexpr int kButtonMargin = 2;
constexpr int kLineEditMargin = 2;

struct Window {
    const char* opener; // the main window's button, Setup's, "Setup" itself; none for the main
    QWidget* WindowRegistry::*window;
    char position;                      // centred on the o(wner), the s(creen); d: system's place
    QStringList focusOrder;             // its start: where the focus goes first, then Tab
    QList<QPair<const char*, int>> max; // fields and the length the store keeps
    QString expected = {};              // the dialog as Describe() tells it
};

// clang-format off
const QList<Window> kWindows = {
    // Of the game types only the chosen one is a Tab stop; the arrow keys move between them.
    {"", nullptr, 0, {"OPTCTF", "TXTConfName", "TXTServName", "TXTPassword", "TXTRconPass",
                      "CMDLaunch", "CMDAbout"}, {{"TXTMess_0", 255}, {"TXTMess_3", 255}}},
    {"Setup", &WindowRegistry::Setup, 's', {"TXTRFLocate"}, {}, "Setup 312x108 focus=TXTRFLocate |Label1 label 'Location of …wse function' 8,8,281,49 wraps |TXTRFLocate lineedit 8,64,209,19 ro |CMDBrowse pushbutton 'Browse' 224,64,81,17 |CMDOK pushbutton 'OK' 64,88,81,17 off |CMDCancel pushbutton 'Cancel' 152,88,81,17"},
    {"CMDBrowse", &WindowRegistry::Browse, 'o', {"Drive1"}, {}, "Browse 172x189 focus=Drive1 |Drive1 combobox 8,8,153,21 |Dir1 treewidget 8,32,153,126 |File1 listwidget 32,80,81,32 hidden |CMDOK pushbutton 'OK' 8,168,81,17 off |CMDCancel pushbutton 'Cancel' 88,168,81,17"},
    {"CMDAddMap", &WindowRegistry::ShippedMaps, 'o', {"LSTSHMaps"}, {}, "Select Maps 283x257 focus=LSTSHMaps |LSTSHMaps listwidget 8,48,113,173 |CMDAdd pushbutton '>' 128,112,25,17 tip=Add |Label1 label 'Available Maps:' 8,32,81,17 |CMDRemove pushbutton '<' 128,136,25,17 tip=Remove |LSTSelmaps listwidget 160,48,113,173 |CMDOK pushbutton 'OK' 56,232,81,17 |Label2 label 'Selected Maps:' 160,32,81,17 |CMDCancel pushbutton 'Cancel' 144,232,81,17 |CMDShipped pushbutton 'Default Maps' 56,8,81,17 |CMDCustom pushbutton 'Custom Maps' 144,8,81,17 |Lstmpmaps listwidget 300,8,81,41 hidden |LSTMP listwidget 300,56,81,41 hidden |Text1 lineedit 'Text1' 300,104,81,19 hidden"},
    {"CMDAbout", &WindowRegistry::About, 'o', {"CMDOK"}, {}, "About-Help 408x304 focus=CMDOK |CMDOK pushbutton 'OK' 8,280,81,17 |CMDReset pushbutton 'Fix Reg' 96,280,81,17 |Text1 plaintextedit 8,8,393,265 scroll"},
    {"CMDMod", &WindowRegistry::Mods, 'o', {"LSTMod"}, {}, "Select a mod from the list 187x255 focus=LSTMod |Label1 label 'Available Mods' 8,8,169,17 |LSTMod listwidget 8,24,169,160 |Label2 label 'Selected Mod' 8,192,169,17 |TXTMod lineedit 'None' 8,208,169,19 ro |CMDOK pushbutton 'OK' 8,232,81,17 |CMDCancel pushbutton 'Cancel' 96,232,81,17 |Dir1 treewidget 184,240,81,32 hidden |File1 listwidget 184,248,81,32 hidden"},
    {"CMDNew", &WindowRegistry::NewConf, 'o', {"TXTNewName"}, {{"TXTNewName", 16}}, "Name? 190x55 dialog focus=TXTNewName |LBLC label 'Config Name:' 8,8,89,17 |TXTNewName lineedit 80,8,105,19 max16 |CMDOK pushbutton 'OK' 8,32,81,17 |CMDCancel pushbutton 'Cancel' 104,32,81,17"},
    {"CMDCopy", &WindowRegistry::CopyConfig, 's', {"CMDCancel"}, {{"TXTNewName", 16}}, "Copy DEFAULT to: 191x76 focus=CMDCancel |Label1 label 'Original Name:' 8,8,129,17 |CMDCancel pushbutton 'Cancel' 104,56,81,17 |LBLC label 'Copy Name:' 8,32,89,17 |TXTOriginal lineedit 'DEFAULT' 80,8,105,19 ro max16 |TXTNewName lineedit 80,32,105,19 max16 |CMDOK pushbutton 'OK' 8,56,81,17"},
    {"CMDTextRate", &WindowRegistry::Text_Rate, 'd', {"SlideTextRate"}, {}, "Set Text Rate 226x161 focus=SlideTextRate |Label1 label 'If you are h…ms intervals' 8,8,209,73 wraps |SlideTextRate slider 8,80,209,17 10-210/10/100/10 |RateText label '110 ms between characters' 8,112,209,17 |Command1 pushbutton 'OK' 32,136,81,17 |Command2 pushbutton 'Cancel' 112,136,81,17"},
    {"CMDMsgRate", &WindowRegistry::MsgRate, 'd', {"SLDMsgRate"}, {}, "Message Rate 223x160 focus=SLDMsgRate |Label1 label 'With this sl… your server' 8,0,209,81 wraps |SLDMsgRate slider 8,80,209,17 3-15/1/3/1 |RateText label '3 minutes between messages.' 8,112,209,17 |CMDOK pushbutton 'OK' 32,136,81,17 |CMDCancel pushbutton 'Cancel' 112,136,81,17"},
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

// Each dialog as its opener leaves it: caption, client size, a dialog-type window, first focus,
// then every control as "name kind 'caption' x,y,w,h flags".
QString Describe(QWidget* d) {
    QStringList out = {d->windowTitle(), QString::asprintf("%dx%d", d->width(), d->height()),
                       d->windowType() == Qt::Dialog ? "dialog" : "",
                       "focus=" + QApplication::focusWidget()->objectName()};
    for (QWidget* c : d->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        const QString text = c->property("text").toString(), tip = c->toolTip();
        const QRect g = c->geometry();
        const int max = c->property("maxLength").toInt();
        out << "|" + c->objectName() << QString(c->metaObject()->className()).mid(1).toLower()
            << (text.isEmpty()
                    ? ""
                    : "'" + (text.size() > 28 ? text.left(12) + "…" + text.right(12) : text) + "'")
            << QString::asprintf("%d,%d,%d,%d", g.x(), g.y(), g.width(), g.height())
            << (c->isHidden() ? "hidden" : "") << (c->isEnabled() ? "" : "off")
            << (c->property("readOnly").toBool() ? "ro" : "")
            << (max && max < 32767 ? "max" + QString::number(max) : "")
            << (c->property("wordWrap").toBool() ? "wraps" : "")
            << (tip.isEmpty() ? "" : "tip=" + tip)
            << (c->property("verticalScrollBarPolicy").toInt() == Qt::ScrollBarAlwaysOn ? "scroll"
                                                                                        : "");
        if (auto* s = qobject_cast<QSlider*>(c))
            out << QString::asprintf("%d-%d/%d/%d/%d", s->minimum(), s->maximum(), s->singleStep(),
                                     s->pageStep(), s->tickInterval());
    }
    return out.join(' ').simplified();
}

TEST(Forms, WhatTheOperatorSeesInEveryWindow) {
    // DejaVu Sans is a wide face: at 7 points every caption fits; at 7.5 "Game Password:",
    // "Original Name:" and the "Combo1" of every narrow drop-down are cut off, at 8 a dozen more.
    ASSERT_EQ(QFontInfo(QApplication::font()).family(), "DejaVu Sans")
        << "the font the windows are laid out for is installed";
    for (const Window& f : kWindows) {
        SCOPED_TRACE(f.opener);
        MainWindow m;
        m.Start().w->show();
        ::Setup setup(m.app, m.forms, m.t.services);
        m.forms.Setup = &setup;
        QWidget* opener = m.w.get();
        if (f.opener == QLatin1String("Setup") || f.opener == QLatin1String("CMDBrowse"))
            ShowSetup(*(::Setup*)(opener = &setup));
        if (QString(f.opener).startsWith("CMD"))
            QTest::mouseClick(opener->findChild<QPushButton*>(f.opener), Qt::LeftButton);
        QWidget* window = f.window ? m.forms.*f.window : m.w.get();
        ASSERT_TRUE(window && QTest::qWaitForWindowActive(window));
        EXPECT_EQ(captionsCutOff(window).join('\n').toStdString(), "");
        EXPECT_FALSE(window->minimumSize().isEmpty());
        EXPECT_EQ(window->minimumSize(), window->maximumSize()) << "the window cannot be resized";
        EXPECT_EQ(window->windowFlags() & ~Qt::WindowType_Mask,
                  Qt::CustomizeWindowHint | Qt::WindowTitleHint)
            << "a title bar without buttons: the window's own buttons close it";
        for (auto* button : window->findChildren<QPushButton*>())
            EXPECT_FALSE(button->isDefault() || button->autoDefault())
                << button->objectName().toStdString();
        if (f.window) {
            EXPECT_EQ(Describe(window).toStdString(), f.expected.toStdString());
        } else {
            EXPECT_FALSE(m.ui().Image1->pixmap().isNull()) << "the banner shows";
            EXPECT_FALSE(window->windowIcon().isNull());
        }
        const QRect area =
            f.position == 'o' ? opener->frameGeometry() : window->screen()->availableGeometry();
        if (f.position == 'd') {
            EXPECT_FALSE(window->testAttribute(Qt::WA_Moved));
        } else if (f.position) {
            EXPECT_LE((window->frameGeometry().center() - area.center()).manhattanLength(), 2);
        }
        EXPECT_EQ(window != opener, !opener->isEnabled()) << "the owner waits";
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), f.focusOrder.front());
        for (const auto& [field, limit] : f.max) {
            auto* edit = window->findChild<QLineEdit*>(field);
            edit->clear();
            QTest::keyClicks(edit, QString(limit + 1, 'x'));
            EXPECT_EQ(edit->text().size(), limit) << field;
        }
        QStringList order;
        for (QWidget* w = window->nextInFocusChain(); w != window; w = w->nextInFocusChain())
            if (w->parentWidget() == window && (w->focusPolicy() & Qt::TabFocus) &&
                !order.contains(w->objectName()))
                order << w->objectName();
        EXPECT_EQ(order.mid(0, f.focusOrder.size()), f.focusOrder);
        if (window != m.w.get() && window != &setup)
            delete window;
    }
    EXPECT_EQ(HostwardenIcon().availableSizes(), QList<QSize>({{16, 16}, {32, 32}}));
}

} // namespace
