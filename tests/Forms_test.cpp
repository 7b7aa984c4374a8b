// Checks the Designer forms of every window: each control where the operator expects it, with
// its caption and starting state, and no caption cut off at the application font.
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

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QTest>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <vector>

// How gtest shows the Qt values it compares.
inline std::ostream& operator<<(std::ostream& os, const QString& s) {
    return os << '"' << s.toStdString() << '"';
}
inline void PrintTo(const QString& s, std::ostream* os) {
    *os << s;
}
inline void PrintTo(const QStringList& l, std::ostream* os) {
    *os << '[' << l.join(", ").toStdString() << ']';
}
inline void PrintTo(const QRect& r, std::ostream* os) {
    *os << r.x() << ", " << r.y() << ", " << r.width() << " x " << r.height();
}
inline void PrintTo(const QSize& s, std::ostream* os) {
    *os << s.width() << " x " << s.height();
}
inline void PrintTo(const QVariant& v, std::ostream* os) {
    *os << v.toString();
}

namespace {

// The application font the windows are laid out for. DejaVu Sans is a wide face: at 7 points
// every caption fits; at 7.5 "Game Password:" and "Original Name:" are cut off, at 8 a dozen
// more captions and the "Combo1" of every narrow drop-down.
constexpr const char* kFontFamily = "DejaVu Sans";
constexpr int kFontPointSize = 7;
// Room a push button needs around its caption inside the style's contents rectangle.
constexpr int kButtonMargin = 2;
// A line edit keeps this much room on each side of its text.
constexpr int kLineEditMargin = 2;

// One application for the whole run; it is never destroyed, as Qt's own globals may already be
// gone when static objects are.
QApplication& app() {
    static int argc = 1;
    static char name[] = "Forms_test";
    static char* argv[] = {name, nullptr};
    static QApplication* instance = [] {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        auto* created = new QApplication(argc, argv);
        QApplication::setFont(QFont(kFontFamily, kFontPointSize));
        return created;
    }();
    return *instance;
}

template <class Form> std::unique_ptr<QWidget> make() {
    app();
    auto window = std::make_unique<QWidget>();
    Form form;
    form.setupUi(window.get());
    return window;
}

struct Control {
    const char* name;
    const char* kind;
    QRect geometry;
    const char* caption; // nullptr: not checked
};

struct FormSpec {
    const char* name;
    std::function<std::unique_ptr<QWidget>()> make;
    const char* title;
    QSize client;
    std::vector<Control> controls;
    std::vector<const char*> focusOrder; // the start of the keyboard focus order
};

const std::vector<FormSpec>& forms() {
    static const std::vector<FormSpec> all = {
        {"Hostwarden",
         make<Ui::Hostwarden>,
         "Hostwarden 2.0.1 by Velloquin",
         {791, 504},
         {
             {"Frame_Outer", "QFrame", {8, 8, 777, 489}, nullptr},
             {"Line_40", "QFrame", {8, 40, 777, 1}, nullptr},
             {"Line_272", "QFrame", {8, 272, 777, 1}, nullptr},
             {"Line_416", "QFrame", {8, 416, 777, 1}, nullptr},
             {"Line_560", "QFrame", {560, 40, 1, 233}, nullptr},
             {"LSTConfig", "QComboBox", {16, 16, 121, 21}, "Combo1"},
             {"CMDLoad", "QPushButton", {144, 16, 81, 17}, "Load"},
             {"CMDSave", "QPushButton", {224, 16, 81, 17}, "Save"},
             {"CMDDelete", "QPushButton", {304, 16, 81, 17}, "Delete"},
             {"CMDNew", "QPushButton", {384, 16, 81, 17}, "New"},
             {"CMDCopy", "QPushButton", {464, 16, 81, 17}, "Copy"},
             {"Label13_0", "QLabel", {16, 48, 137, 17}, "Configuration"},
             {"Label1_0", "QLabel", {16, 72, 81, 17}, "Game Type:"},
             {"OPTCTF", "QRadioButton", {16, 88, 49, 25}, "CTF"},
             {"OPTDM", "QRadioButton", {56, 88, 49, 25}, "DM"},
             {"OPTTDM", "QRadioButton", {96, 88, 57, 25}, "TDM"},
             {"Label1_14", "QLabel", {16, 112, 81, 17}, "Config Name:"},
             {"TXTConfName", "QLineEdit", {16, 128, 121, 19}, ""},
             {"Label1_1", "QLabel", {16, 152, 81, 17}, "Server Name:"},
             {"TXTServName", "QLineEdit", {16, 168, 121, 19}, ""},
             {"Label1_3", "QLabel", {16, 192, 81, 17}, "Game Password:"},
             {"TXTPassword", "QLineEdit", {16, 208, 121, 19}, ""},
             {"Label1_4", "QLabel", {16, 232, 80, 13}, "RCon Password:"},
             {"TXTRconPass", "QLineEdit", {16, 248, 121, 19}, ""},
             {"Label1_2", "QLabel", {144, 72, 81, 17}, "Max Players:"},
             {"MaxPlayers", "QComboBox", {144, 88, 65, 21}, "Combo1"},
             {"Label1_7", "QLabel", {216, 72, 81, 17}, "Max Caps:"},
             {"MaxCaps", "QComboBox", {216, 88, 65, 21}, "Combo1"},
             {"Label1_5", "QLabel", {144, 112, 81, 17}, "Max Time:"},
             {"MaxTime", "QComboBox", {144, 128, 65, 21}, "Combo1"},
             {"Label1_6", "QLabel", {216, 112, 81, 17}, "Max Kills:"},
             {"MaxKills", "QComboBox", {216, 128, 65, 21}, "Combo1"},
             {"Label1_8", "QLabel", {144, 152, 81, 17}, "Max Geo's:"},
             {"MaxGeo", "QComboBox", {144, 168, 65, 21}, "Combo1"},
             {"Label1_9", "QLabel", {208, 152, 81, 17}, "Team Damage:"},
             {"TeamDamage", "QComboBox", {216, 168, 65, 21}, "Combo1"},
             {"Label1_10", "QLabel", {144, 192, 81, 17}, "Fall Damage:"},
             {"FallDamage", "QComboBox", {144, 208, 65, 21}, "Combo1"},
             {"Label1_11", "QLabel", {216, 192, 81, 17}, "Weapon Stay:"},
             {"WeaponStay", "QComboBox", {216, 208, 65, 21}, "Combo1"},
             {"Label1_12", "QLabel", {144, 232, 81, 17}, "Force Spawn:"},
             {"ForceSpawn", "QComboBox", {144, 248, 65, 21}, "Combo1"},
             {"Label1_13", "QLabel", {216, 232, 81, 17}, "Balance:"},
             {"Balance", "QComboBox", {216, 248, 65, 21}, "Combo1"},
             {"TXTSTat", "QPlainTextEdit", {288, 88, 265, 177}, ""},
             {"Label13_1", "QLabel", {568, 48, 137, 17}, "Maps n' Mods"},
             {"Label2", "QLabel", {568, 72, 89, 17}, "Maps:"},
             {"CMDAddMap", "QPushButton", {608, 72, 57, 17}, "Add"},
             {"CMDRemoveMaps", "QPushButton", {664, 72, 57, 17}, "Remove"},
             {"CMDClearMaps", "QPushButton", {720, 72, 57, 17}, "Clear"},
             {"Label4", "QLabel", {568, 96, 73, 17}, "Selected Maps"},
             {"MCS", "QLabel", {704, 96, 73, 17}, "0 maps"},
             {"LSTMaps", "QListWidget", {568, 112, 209, 134}, nullptr},
             {"CMDMod", "QPushButton", {568, 248, 49, 17}, "Mods"},
             {"TXTMod", "QLineEdit", {616, 246, 113, 19}, "None"},
             {"CMDRemovemod", "QPushButton", {728, 248, 49, 17}, "Remove"},
             {"CHKMessage", "QCheckBox", {16, 280, 113, 17}, "Auto Message"},
             {"LBLCount", "QLabel", {168, 280, 297, 17}, "Next Auto Message due in 000 seconds"},
             {"CMDTextRate", "QPushButton", {688, 280, 89, 17}, "Set Text Rate"},
             {"CHKRand", "QCheckBox", {16, 296, 161, 17}, "Randomize Messages"},
             {"CMDMsgRate", "QPushButton", {688, 296, 89, 17}, "Set Msg Rate"},
             {"Label5", "QLabel", {16, 320, 17, 17}, "1"},
             {"Label6", "QLabel", {16, 344, 17, 17}, "2"},
             {"Label7", "QLabel", {16, 368, 17, 17}, "3"},
             {"Label8", "QLabel", {16, 392, 17, 17}, "4"},
             {"TXTMess_0",
              "QLineEdit",
              {32, 320, 745, 19},
              "This Server is running Hostwarden 2.0 by Velloquin"},
             {"TXTMess_1",
              "QLineEdit",
              {32, 344, 745, 19},
              "To Get the latest version go to https://hostwarden.example.org/"},
             {"TXTMess_2", "QLineEdit", {32, 368, 745, 19}, ""},
             {"TXTMess_3", "QLineEdit", {32, 392, 745, 19}, ""},
             {"CHKPort", "QCheckBox", {16, 424, 73, 17}, "Force Port"},
             {"TXTPort", "QLineEdit", {88, 424, 41, 19}, ""},
             {"CHKGameTracker", "QCheckBox", {16, 448, 81, 17}, "Lan Only"},
             {"CHKServRec", "QCheckBox", {16, 472, 113, 17}, "Server Recover"},
             {"CMDLaunch", "QPushButton", {136, 424, 137, 65}, "Launch"},
             {"Image1", "QLabel", {280, 424, 408, 64}, nullptr},
             {"CMDMin", "QPushButton", {696, 424, 81, 17}, "Minimize"},
             {"CMDAbout", "QPushButton", {696, 448, 81, 17}, "About/Help"},
             {"CMDExit", "QPushButton", {696, 472, 81, 17}, "Exit"},
         },
         {"OPTCTF", "OPTDM", "OPTTDM", "TXTConfName", "TXTServName", "TXTPassword", "TXTRconPass",
          "CMDLaunch", "CMDAbout"}},
        {"Setup",
         make<Ui::Setup>,
         "Setup",
         {312, 108},
         {
             {"Label1",
              "QLabel",
              {8, 8, 281, 49},
              "Location of redfaction game directory:. The location of RF.EXE.Usualy "
              "C:\\Games\\Redfaction. You MUST use the browse function"},
             {"TXTRFLocate", "QLineEdit", {8, 64, 209, 19}, ""},
             {"CMDBrowse", "QPushButton", {224, 64, 81, 17}, "Browse"},
             {"CMDOK", "QPushButton", {64, 88, 81, 17}, "OK"},
             {"CMDCancel", "QPushButton", {152, 88, 81, 17}, "Cancel"},
         },
         {"TXTRFLocate"}},
        {"Browse",
         make<Ui::Browse>,
         "Browse",
         {172, 189},
         {
             {"Drive1", "QComboBox", {8, 8, 153, 21}, nullptr},
             {"Dir1", "QListWidget", {8, 32, 153, 126}, nullptr},
             {"CMDOK", "QPushButton", {8, 168, 81, 17}, "OK"},
             {"CMDCancel", "QPushButton", {88, 168, 81, 17}, "Cancel"},
         },
         {"Drive1"}},
        {"ShippedMaps",
         make<Ui::ShippedMaps>,
         "",
         {283, 257},
         {
             {"CMDShipped", "QPushButton", {56, 8, 81, 17}, "Default Maps"},
             {"CMDCustom", "QPushButton", {144, 8, 81, 17}, "Custom Maps"},
             {"Label1", "QLabel", {8, 32, 81, 17}, "Available Maps:"},
             {"LSTSHMaps", "QListWidget", {8, 48, 113, 173}, nullptr},
             {"CMDAdd", "QPushButton", {128, 112, 25, 17}, ">"},
             {"CMDRemove", "QPushButton", {128, 136, 25, 17}, "<"},
             {"Label2", "QLabel", {160, 32, 81, 17}, "Selected Maps:"},
             {"LSTSelmaps", "QListWidget", {160, 48, 113, 173}, nullptr},
             {"CMDOK", "QPushButton", {56, 232, 81, 17}, "OK"},
             {"CMDCancel", "QPushButton", {144, 232, 81, 17}, "Cancel"},
         },
         {"LSTSHMaps"}},
        {"About",
         make<Ui::About>,
         "About-Help",
         {408, 304},
         {
             {"Text1", "QPlainTextEdit", {8, 8, 393, 265}, ""},
             {"CMDOK", "QPushButton", {8, 280, 81, 17}, "OK"},
             {"CMDReset", "QPushButton", {96, 280, 81, 17}, "Fix Reg"},
         },
         {"CMDOK"}},
        {"Mods",
         make<Ui::Mods>,
         "Select a mod from the list",
         {187, 255},
         {
             {"Label1", "QLabel", {8, 8, 169, 17}, "Available Mods"},
             {"LSTMod", "QListWidget", {8, 24, 169, 160}, nullptr},
             {"Label2", "QLabel", {8, 192, 169, 17}, "Selected Mod"},
             {"TXTMod", "QLineEdit", {8, 208, 169, 19}, "None"},
             {"CMDOK", "QPushButton", {8, 232, 81, 17}, "OK"},
             {"CMDCancel", "QPushButton", {96, 232, 81, 17}, "Cancel"},
         },
         {"LSTMod"}},
        {"NewConf",
         make<Ui::NewConf>,
         "Name?",
         {190, 55},
         {
             {"LBLC", "QLabel", {8, 8, 89, 17}, "Config Name:"},
             {"TXTNewName", "QLineEdit", {80, 8, 105, 19}, ""},
             {"CMDOK", "QPushButton", {8, 32, 81, 17}, "OK"},
             {"CMDCancel", "QPushButton", {104, 32, 81, 17}, "Cancel"},
         },
         {"TXTNewName"}},
        {"CopyConfig",
         make<Ui::CopyConfig>,
         "Copy Configuration to:",
         {191, 76},
         {
             {"Label1", "QLabel", {8, 8, 129, 17}, "Original Name:"},
             {"TXTOriginal", "QLineEdit", {80, 8, 105, 19}, ""},
             {"LBLC", "QLabel", {8, 32, 89, 17}, "Copy Name:"},
             {"TXTNewName", "QLineEdit", {80, 32, 105, 19}, ""},
             {"CMDOK", "QPushButton", {8, 56, 81, 17}, "OK"},
             {"CMDCancel", "QPushButton", {104, 56, 81, 17}, "Cancel"},
         },
         {"CMDCancel"}},
        {"Text_Rate",
         make<Ui::Text_Rate>,
         "Set Text Rate",
         {226, 161},
         {
             {"Label1",
              "QLabel",
              {8, 8, 209, 73},
              "If you are having trouble with Automessages you may find that tweaking this "
              "setting will solve the problem. But then again it may not. Use Arrow keys "
              "Left,Right to move slider at 10ms intervals"},
             {"SlideTextRate", "QSlider", {8, 80, 209, 17}, nullptr},
             {"RateText", "QLabel", {8, 112, 209, 17}, ""},
             {"Command1", "QPushButton", {32, 136, 81, 17}, "OK"},
             {"Command2", "QPushButton", {112, 136, 81, 17}, "Cancel"},
         },
         {"SlideTextRate"}},
        {"MsgRate",
         make<Ui::MsgRate>,
         "Message Rate",
         {223, 160},
         {
             {"Label1",
              "QLabel",
              {8, 0, 209, 81},
              "With this slider you can set the rate at which messages are sent to the "
              "dedicated server. The values for this control range from 3 mins to 15 mins in 1 "
              "min increments. If messages repeat to often it can annoy players on your server"},
             {"SLDMsgRate", "QSlider", {8, 80, 209, 17}, nullptr},
             {"RateText", "QLabel", {8, 112, 209, 17}, ""},
             {"CMDOK", "QPushButton", {32, 136, 81, 17}, "OK"},
             {"CMDCancel", "QPushButton", {112, 136, 81, 17}, "Cancel"},
         },
         {"SLDMsgRate"}},
    };
    return all;
}

const FormSpec& spec(const char* name) {
    for (const auto& f : forms())
        if (QLatin1String(f.name) == QLatin1String(name))
            return f;
    throw std::runtime_error(std::string("no form ") + name);
}

QString captionOf(const QWidget* w) {
    if (auto b = qobject_cast<const QAbstractButton*>(w))
        return b->text();
    if (auto l = qobject_cast<const QLabel*>(w))
        return l->text();
    if (auto e = qobject_cast<const QLineEdit*>(w))
        return e->text();
    if (auto c = qobject_cast<const QComboBox*>(w))
        return c->currentText();
    if (auto p = qobject_cast<const QPlainTextEdit*>(w))
        return p->toPlainText();
    return {};
}

QList<QWidget*> controlsOf(QWidget* window) {
    return window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
}

class Forms : public testing::TestWithParam<const char*> {};

TEST_P(Forms, EveryControlHasItsKindPlaceAndCaption) {
    const FormSpec& f = spec(GetParam());
    auto window = f.make();
    EXPECT_EQ(window->objectName(), f.name);
    EXPECT_EQ(window->windowTitle(), f.title);
    EXPECT_EQ(window->size(), f.client);
    EXPECT_EQ(window->minimumSize(), f.client) << "the window is fixed size";
    EXPECT_EQ(window->maximumSize(), f.client) << "the window is fixed size";

    QStringList expected;
    for (const Control& c : f.controls) {
        expected << c.name;
        auto* w = window->findChild<QWidget*>(c.name, Qt::FindDirectChildrenOnly);
        ASSERT_NE(w, nullptr) << c.name;
        EXPECT_STREQ(w->metaObject()->className(), c.kind) << c.name;
        EXPECT_EQ(w->geometry(), c.geometry) << c.name;
        if (c.caption) {
            EXPECT_EQ(captionOf(w), QString::fromUtf8(c.caption)) << c.name;
        }
    }
    QStringList actual;
    for (QWidget* w : controlsOf(window.get()))
        actual << w->objectName();
    expected.sort();
    actual.sort();
    EXPECT_EQ(actual, expected) << "the form holds exactly the listed controls";
}

TEST_P(Forms, FocusGoesFirstWhereTheOperatorStarts) {
    const FormSpec& f = spec(GetParam());
    auto window = f.make();
    // The keyboard focus order among the window's own controls, as Tab walks it.
    QStringList order;
    for (QWidget* w = window->nextInFocusChain(); w != window.get(); w = w->nextInFocusChain())
        if (w->parentWidget() == window.get() && (w->focusPolicy() & Qt::TabFocus) &&
            !order.contains(w->objectName()))
            order << w->objectName();
    QStringList prefix;
    for (const char* name : f.focusOrder)
        prefix << name;
    EXPECT_EQ(order.mid(0, prefix.size()), prefix);

    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), f.focusOrder.front());
}

INSTANTIATE_TEST_SUITE_P(AllWindows, Forms,
                         testing::Values("Hostwarden", "Setup", "Browse", "ShippedMaps", "About",
                                         "Mods", "NewConf", "CopyConfig", "Text_Rate", "MsgRate"),
                         [](const auto& info) { return std::string(info.param); });

struct State {
    const char* form;
    const char* control;
    const char* property;
    QVariant value;
};

TEST(Forms, ControlsStartInTheirOwnState) {
    const std::vector<State> states = {
        {"Hostwarden", "TXTConfName", "readOnly", true},
        {"Hostwarden", "TXTServName", "readOnly", false},
        {"Hostwarden", "TXTMod", "readOnly", true},
        {"Hostwarden", "TXTPort", "enabled", false},
        {"Hostwarden", "TXTPassword", "echoMode", int(QLineEdit::Normal)},
        {"Hostwarden", "TXTRconPass", "echoMode", int(QLineEdit::Normal)},
        {"Hostwarden", "TXTMess_0", "maxLength", 255},
        {"Hostwarden", "TXTMess_1", "maxLength", 255},
        {"Hostwarden", "TXTMess_2", "maxLength", 255},
        {"Hostwarden", "TXTMess_3", "maxLength", 255},
        {"Hostwarden", "TXTSTat", "readOnly", false},
        {"Hostwarden", "TXTSTat", "lineWrapMode", int(QPlainTextEdit::NoWrap)},
        {"Hostwarden", "TXTSTat", "horizontalScrollBarPolicy", int(Qt::ScrollBarAsNeeded)},
        {"Hostwarden", "TXTSTat", "verticalScrollBarPolicy", int(Qt::ScrollBarAsNeeded)},
        {"Hostwarden", "LSTMaps", "selectionMode", int(QAbstractItemView::SingleSelection)},
        {"Hostwarden", "LSTMaps", "sortingEnabled", false},
        {"Hostwarden", "MCS", "alignment", int(Qt::AlignCenter)},
        {"Hostwarden", "CHKMessage", "checked", true},
        {"Hostwarden", "CHKRand", "checked", false},
        {"Hostwarden", "CHKPort", "checked", false},
        {"Hostwarden", "CHKGameTracker", "checked", false},
        {"Hostwarden", "CHKServRec", "checked", false},
        {"Hostwarden", "CHKServRec", "toolTip",
         "If RF Dedicated server crashes it will be restarted. Not 100% guarenteed but may work "
         "ok."},
        {"Hostwarden", "Image1", "scaledContents", true},
        {"Setup", "CMDOK", "enabled", false},
        {"Setup", "TXTRFLocate", "readOnly", true},
        {"Setup", "Label1", "wordWrap", true},
        {"Browse", "CMDOK", "enabled", false},
        {"Browse", "Dir1", "selectionMode", int(QAbstractItemView::SingleSelection)},
        {"ShippedMaps", "CMDAdd", "toolTip", "Add"},
        {"ShippedMaps", "CMDRemove", "toolTip", "Remove"},
        {"ShippedMaps", "LSTSHMaps", "selectionMode", int(QAbstractItemView::SingleSelection)},
        {"ShippedMaps", "LSTSelmaps", "selectionMode", int(QAbstractItemView::SingleSelection)},
        {"ShippedMaps", "LSTSHMaps", "sortingEnabled", false},
        {"ShippedMaps", "LSTSelmaps", "sortingEnabled", false},
        {"About", "Text1", "readOnly", false},
        {"About", "Text1", "verticalScrollBarPolicy", int(Qt::ScrollBarAlwaysOn)},
        {"Mods", "TXTMod", "readOnly", true},
        {"Mods", "LSTMod", "selectionMode", int(QAbstractItemView::SingleSelection)},
        {"NewConf", "TXTNewName", "maxLength", 16},
        {"CopyConfig", "TXTNewName", "maxLength", 16},
        {"CopyConfig", "TXTOriginal", "maxLength", 16},
        {"CopyConfig", "TXTOriginal", "readOnly", true},
        {"Text_Rate", "Label1", "wordWrap", true},
        {"Text_Rate", "SlideTextRate", "orientation", int(Qt::Horizontal)},
        {"Text_Rate", "SlideTextRate", "minimum", 10},
        {"Text_Rate", "SlideTextRate", "maximum", 210},
        {"Text_Rate", "SlideTextRate", "singleStep", 10},
        {"Text_Rate", "SlideTextRate", "pageStep", 100},
        {"Text_Rate", "SlideTextRate", "tickInterval", 10},
        {"Text_Rate", "SlideTextRate", "tickPosition", int(QSlider::TicksBelow)},
        {"MsgRate", "Label1", "wordWrap", true},
        {"MsgRate", "SLDMsgRate", "orientation", int(Qt::Horizontal)},
        {"MsgRate", "SLDMsgRate", "minimum", 3},
        {"MsgRate", "SLDMsgRate", "maximum", 15},
        {"MsgRate", "SLDMsgRate", "singleStep", 1},
        {"MsgRate", "SLDMsgRate", "pageStep", 3},
        {"MsgRate", "SLDMsgRate", "tickInterval", 1},
        {"MsgRate", "SLDMsgRate", "tickPosition", int(QSlider::TicksBelow)},
    };
    for (const State& s : states) {
        auto window = spec(s.form).make();
        auto* w = window->findChild<QWidget*>(s.control);
        ASSERT_NE(w, nullptr) << s.form << "." << s.control;
        QVariant actual = w->property(s.property);
        ASSERT_TRUE(actual.isValid()) << s.form << "." << s.control << "." << s.property;
        if (s.value.typeId() == QMetaType::Int) {
            actual = actual.toInt();
        }
        EXPECT_EQ(actual, s.value) << s.form << "." << s.control << "." << s.property;
    }
    // Every push button of every form starts enabled unless listed above, and none is a
    // default button: Enter must not press anything the operator did not focus.
    for (const auto& f : forms()) {
        auto window = f.make();
        for (auto* b : window->findChildren<QPushButton*>()) {
            EXPECT_FALSE(b->isDefault() || b->autoDefault()) << f.name << "." << b->objectName();
            const QString form = f.name;
            const bool listedDisabled =
                (form == "Setup" || form == "Browse") && b->objectName() == "CMDOK";
            EXPECT_EQ(b->isEnabled(), !listedDisabled) << f.name << "." << b->objectName();
        }
    }
}

TEST(Forms, GameTypeOptionsStartUnselectedAndUngrouped) {
    auto window = make<Ui::Hostwarden>();
    for (const char* name : {"OPTCTF", "OPTDM", "OPTTDM"}) {
        auto* option = window->findChild<QRadioButton*>(name);
        ASSERT_NE(option, nullptr) << name;
        EXPECT_FALSE(option->isChecked()) << name;
        // The window class keeps the three exclusive itself, so code can clear them all.
        EXPECT_FALSE(option->autoExclusive()) << name;
        EXPECT_EQ(option->group(), nullptr) << name;
    }
}

TEST(Forms, DropDownsAreEditableShowCombo1AndNeverInsertTypedText) {
    auto window = make<Ui::Hostwarden>();
    const QStringList names = {"LSTConfig",  "MaxPlayers", "MaxCaps",    "MaxTime",
                               "MaxKills",   "MaxGeo",     "TeamDamage", "FallDamage",
                               "WeaponStay", "ForceSpawn", "Balance"};
    for (const QString& name : names) {
        auto* combo = window->findChild<QComboBox*>(name);
        ASSERT_NE(combo, nullptr) << name.toStdString();
        EXPECT_TRUE(combo->isEditable()) << name.toStdString();
        EXPECT_EQ(combo->count(), 0) << name.toStdString();
        EXPECT_EQ(combo->insertPolicy(), QComboBox::NoInsert) << name.toStdString();
        ASSERT_NE(combo->lineEdit(), nullptr);
        EXPECT_EQ(combo->lineEdit()->text(), "Combo1") << name.toStdString();
    }
}

TEST(Forms, HeadingsCountdownAndLaunchUseTheirOwnType) {
    auto window = make<Ui::Hostwarden>();
    struct Type {
        const char* name;
        double minPoints, maxPoints; // the form holds whole points only
    };
    for (const Type& t : std::vector<Type>{{"Label13_0", 9.75, 10},
                                           {"Label13_1", 9.75, 10},
                                           {"LBLCount", 9.75, 10},
                                           {"CMDLaunch", 24, 24}}) {
        auto* w = window->findChild<QWidget*>(t.name);
        ASSERT_NE(w, nullptr) << t.name;
        EXPECT_TRUE(w->font().bold()) << t.name;
        EXPECT_GE(w->font().pointSizeF(), t.minPoints) << t.name;
        EXPECT_LE(w->font().pointSizeF(), t.maxPoints) << t.name;
        EXPECT_EQ(w->font().family(), QApplication::font().family()) << t.name;
    }
    auto* plain = window->findChild<QWidget*>("Label1_0");
    EXPECT_EQ(plain->font(), QApplication::font());
}

TEST(Forms, PicturesLoadFromTheResources) {
    auto window = make<Ui::Hostwarden>();
    auto* banner = window->findChild<QLabel*>("Image1");
    ASSERT_NE(banner, nullptr);
    EXPECT_EQ(banner->pixmap().size(), QSize(640, 200));
    const QImage bannerImage(":/ui/images/banner.png");
    EXPECT_FALSE(bannerImage.isNull());
    EXPECT_EQ(bannerImage.colorCount(), 0) << "the banner is true colour";

    EXPECT_FALSE(window->windowIcon().isNull());
    for (int side : {32, 16}) {
        const QImage icon(QString(":/ui/images/icon%1.png").arg(side));
        EXPECT_EQ(icon.size(), QSize(side, side));
        EXPECT_GT(icon.colorCount(), 0) << "the icon keeps a palette";
        EXPECT_LE(icon.colorCount(), 16);
    }
}

// Where a caption's text is drawn inside its widget, in the widget's coordinates.
QRect captionArea(QWidget* w) {
    const QString text = captionOf(w);
    const QFontMetrics fm(w->font());
    const QSize size(fm.horizontalAdvance(text), fm.height());
    QRect contents;
    Qt::Alignment align = Qt::AlignLeft | Qt::AlignVCenter;
    if (auto* label = qobject_cast<QLabel*>(w)) {
        contents = label->contentsRect();
        align = label->alignment();
    } else {
        QStyleOptionButton opt;
        opt.initFrom(w);
        opt.text = text;
        const auto element = qobject_cast<QPushButton*>(w) ? QStyle::SE_PushButtonContents
                             : qobject_cast<QCheckBox*>(w) ? QStyle::SE_CheckBoxContents
                                                           : QStyle::SE_RadioButtonContents;
        contents = w->style()->subElementRect(element, &opt, w);
        if (qobject_cast<QPushButton*>(w)) {
            contents.adjust(kButtonMargin, 0, -kButtonMargin, 0);
            align = Qt::AlignCenter;
        }
    }
    return QStyle::alignedRect(Qt::LeftToRight, align, size, contents);
}

bool hasCaption(QWidget* w) {
    auto* label = qobject_cast<QLabel*>(w);
    if (label && (label->text().isEmpty() || label->wordWrap()))
        return false;
    return label || qobject_cast<QAbstractButton*>(w);
}

// What a control paints over whatever lies beneath it.
QRect coverOf(QWidget* w) {
    if (qobject_cast<QFrame*>(w) && w->metaObject()->className() == QByteArray("QFrame"))
        return {};
    if (hasCaption(w) && !qobject_cast<QPushButton*>(w)) {
        QRect cover = captionArea(w).translated(w->pos());
        return cover.united(QRect(w->x(), cover.top(), cover.left() - w->x(), cover.height()));
    }
    return w->geometry();
}

// Every reason a caption of the window would show cut off, one line each.
QStringList captionsCutOff(QWidget* window) {
    QStringList faults;
    const QList<QWidget*> controls = controlsOf(window);
    for (qsizetype i = 0; i < controls.size(); ++i) {
        QWidget* w = controls[i];
        const QString where = QString(window->objectName()) + "." + w->objectName();
        auto* label = qobject_cast<QLabel*>(w);
        if (label && label->wordWrap()) {
            const int needed = label->heightForWidth(label->width());
            if (needed > label->height())
                faults << QString("%1: wrapped text needs %2 px of height, has %3")
                              .arg(where)
                              .arg(needed)
                              .arg(label->height());
            continue;
        }
        if (auto* combo = qobject_cast<QComboBox*>(w); combo && combo->isEditable()) {
            QStyleOptionComboBox opt;
            opt.initFrom(combo);
            opt.editable = true;
            opt.frame = combo->hasFrame();
            const QRect field = combo->style()->subControlRect(QStyle::CC_ComboBox, &opt,
                                                               QStyle::SC_ComboBoxEditField, combo);
            const int needed = QFontMetrics(combo->font()).horizontalAdvance(combo->currentText()) +
                               2 * kLineEditMargin;
            if (needed > field.width())
                faults << QString("%1: \"%2\" needs %3 px of the edit field, has %4")
                              .arg(where, combo->currentText())
                              .arg(needed)
                              .arg(field.width());
            continue;
        }
        if (!hasCaption(w))
            continue;
        const QRect area = captionArea(w);
        const int left = qobject_cast<QPushButton*>(w) ? kButtonMargin
                         : label                       ? label->contentsRect().left()
                                                       : area.left();
        const int right = w->width() - 1 - (qobject_cast<QPushButton*>(w) ? kButtonMargin : 0);
        if (area.left() < left || area.right() > right)
            faults << QString("%1: \"%2\" needs %3 px of width, has %4")
                          .arg(where, captionOf(w))
                          .arg(area.width())
                          .arg(right - std::max(area.left(), left) + 1);
        const int fontHeight = QFontMetrics(w->font()).height();
        if (fontHeight > w->height())
            faults << QString("%1: font is %2 px high, the control %3")
                          .arg(where)
                          .arg(fontHeight)
                          .arg(w->height());
        // Controls created later lie on top of this one.
        const QRect drawn = area.translated(w->pos());
        for (qsizetype j = i + 1; j < controls.size(); ++j) {
            const QRect cover = coverOf(controls[j]);
            if (cover.intersects(drawn))
                faults << QString("%1: \"%2\" lies under %3")
                              .arg(where, captionOf(w), controls[j]->objectName());
        }
    }
    return faults;
}

TEST(Forms, NoCaptionIsCutOffAtTheApplicationFont) {
    app();
    ASSERT_EQ(QFontInfo(QApplication::font()).family(), kFontFamily)
        << "the font the windows are laid out for is installed";
    QStringList faults;
    for (const auto& f : forms()) {
        auto window = f.make();
        window->ensurePolished();
        faults << captionsCutOff(window.get());
    }
    EXPECT_TRUE(faults.isEmpty()) << faults.join("\n").toStdString();
}

} // namespace
