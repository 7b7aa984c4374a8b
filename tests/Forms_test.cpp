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

#include <QDebug>
#include <QFontInfo>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QTest>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <vector>

// How gtest shows the Qt values it compares.
template <class T>
requires(std::is_same_v<T, QString> || std::is_same_v<T, QRect> || std::is_same_v<T, QSize> ||
         std::is_same_v<T, QVariant>) void PrintTo(const T& value, std::ostream* os) {
    QString text;
    QDebug(&text).nospace() << value;
    *os << text.toStdString();
}

namespace {

// Room a push button needs around its caption inside the style's contents rectangle.
constexpr int kButtonMargin = 2;
// A line edit keeps this much room on each side of its text.
constexpr int kLineEditMargin = 2;

template <class Form> std::unique_ptr<QWidget> make() {
    auto window = std::make_unique<QWidget>();
    Form().setupUi(window.get());
    return window;
}

using State = std::vector<std::pair<const char*, QVariant>>;

struct Control {
    const char* name;
    const char* kind;
    QRect geometry;
    const char* caption; // nullptr: not checked
    State state{};       // the properties set away from their default
};

struct FormSpec {
    const char* name;
    std::function<std::unique_ptr<QWidget>()> make;
    const char* title;
    QSize client;
    std::vector<Control> controls;
    std::vector<const char*> focusOrder; // the start of the keyboard focus order
};

const QVariant kSingle = int(QAbstractItemView::SingleSelection);
const QVariant kAsNeeded = int(Qt::ScrollBarAsNeeded);
const QVariant kNormal = int(QLineEdit::Normal);
const State kSingleUnsorted = {{"selectionMode", kSingle}, {"sortingEnabled", false}};
const State kWrap = {{"wordWrap", true}};

// clang-format off
State slider(int minimum, int maximum, int singleStep, int pageStep, int tickInterval) {
    return {{"orientation", int(Qt::Horizontal)}, {"minimum", minimum}, {"maximum", maximum},
            {"singleStep", singleStep}, {"pageStep", pageStep}, {"tickInterval", tickInterval},
            {"tickPosition", int(QSlider::TicksBelow)}};
}

const std::vector<FormSpec> kForms = {
    {"Hostwarden", make<Ui::Hostwarden>, "Hostwarden 2.0.1 by Velloquin", {791, 504}, {
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
        // The window class keeps the three exclusive itself, so code can clear them all.
        {"OPTCTF", "QRadioButton", {16, 88, 49, 25}, "CTF", {{"autoExclusive", false}}},
        {"OPTDM", "QRadioButton", {56, 88, 49, 25}, "DM", {{"autoExclusive", false}}},
        {"OPTTDM", "QRadioButton", {96, 88, 57, 25}, "TDM", {{"autoExclusive", false}}},
        {"Label1_14", "QLabel", {16, 112, 81, 17}, "Config Name:"},
        {"TXTConfName", "QLineEdit", {16, 128, 121, 19}, "", {{"readOnly", true}}},
        {"Label1_1", "QLabel", {16, 152, 81, 17}, "Server Name:"},
        {"TXTServName", "QLineEdit", {16, 168, 121, 19}, "", {{"readOnly", false}}},
        {"Label1_3", "QLabel", {16, 192, 81, 17}, "Game Password:"},
        {"TXTPassword", "QLineEdit", {16, 208, 121, 19}, "", {{"echoMode", kNormal}}},
        {"Label1_4", "QLabel", {16, 232, 80, 13}, "RCon Password:"},
        {"TXTRconPass", "QLineEdit", {16, 248, 121, 19}, "", {{"echoMode", kNormal}}},
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
        {"TXTSTat", "QPlainTextEdit", {288, 88, 265, 177}, "",
         {{"readOnly", false}, {"lineWrapMode", int(QPlainTextEdit::NoWrap)},
          {"horizontalScrollBarPolicy", kAsNeeded}, {"verticalScrollBarPolicy", kAsNeeded}}},
        {"Label13_1", "QLabel", {568, 48, 137, 17}, "Maps n' Mods"},
        {"Label2", "QLabel", {568, 72, 89, 17}, "Maps:"},
        {"CMDAddMap", "QPushButton", {608, 72, 57, 17}, "Add"},
        {"CMDRemoveMaps", "QPushButton", {664, 72, 57, 17}, "Remove"},
        {"CMDClearMaps", "QPushButton", {720, 72, 57, 17}, "Clear"},
        {"Label4", "QLabel", {568, 96, 73, 17}, "Selected Maps"},
        {"MCS", "QLabel", {704, 96, 73, 17}, "0 maps", {{"alignment", int(Qt::AlignCenter)}}},
        {"LSTMaps", "QListWidget", {568, 112, 209, 134}, nullptr, kSingleUnsorted},
        {"CMDMod", "QPushButton", {568, 248, 49, 17}, "Mods"},
        {"TXTMod", "QLineEdit", {616, 246, 113, 19}, "None", {{"readOnly", true}}},
        {"CMDRemovemod", "QPushButton", {728, 248, 49, 17}, "Remove"},
        {"CHKMessage", "QCheckBox", {16, 280, 113, 17}, "Auto Message", {{"checked", true}}},
        {"LBLCount", "QLabel", {168, 280, 297, 17}, "Next Auto Message due in 000 seconds"},
        {"CMDTextRate", "QPushButton", {688, 280, 89, 17}, "Set Text Rate"},
        {"CHKRand", "QCheckBox", {16, 296, 161, 17}, "Randomize Messages"},
        {"CMDMsgRate", "QPushButton", {688, 296, 89, 17}, "Set Msg Rate"},
        {"Label5", "QLabel", {16, 320, 17, 17}, "1"},
        {"Label6", "QLabel", {16, 344, 17, 17}, "2"},
        {"Label7", "QLabel", {16, 368, 17, 17}, "3"},
        {"Label8", "QLabel", {16, 392, 17, 17}, "4"},
        {"TXTMess_0", "QLineEdit", {32, 320, 745, 19},
         "This Server is running Hostwarden 2.0 by Velloquin", {{"maxLength", 255}}},
        {"TXTMess_1", "QLineEdit", {32, 344, 745, 19},
         "To Get the latest version go to https://hostwarden.example.org/", {{"maxLength", 255}}},
        {"TXTMess_2", "QLineEdit", {32, 368, 745, 19}, "", {{"maxLength", 255}}},
        {"TXTMess_3", "QLineEdit", {32, 392, 745, 19}, "", {{"maxLength", 255}}},
        {"CHKPort", "QCheckBox", {16, 424, 73, 17}, "Force Port"},
        {"TXTPort", "QLineEdit", {88, 424, 41, 19}, "", {{"enabled", false}}},
        {"CHKGameTracker", "QCheckBox", {16, 448, 81, 17}, "Lan Only"},
        {"CHKServRec", "QCheckBox", {16, 472, 113, 17}, "Server Recover", {{"toolTip",
         "If RF Dedicated server crashes it will be restarted. Not 100% guarenteed but may work ok."}}},
        {"CMDLaunch", "QPushButton", {136, 424, 137, 65}, "Launch"},
        {"Image1", "QLabel", {280, 424, 408, 64}, nullptr, {{"scaledContents", true}}},
        {"CMDMin", "QPushButton", {696, 424, 81, 17}, "Minimize"},
        {"CMDAbout", "QPushButton", {696, 448, 81, 17}, "About/Help"},
        {"CMDExit", "QPushButton", {696, 472, 81, 17}, "Exit"},
     }, {"OPTCTF", "OPTDM", "OPTTDM", "TXTConfName", "TXTServName", "TXTPassword", "TXTRconPass",
         "CMDLaunch", "CMDAbout"}},
    {"Setup", make<Ui::Setup>, "Setup", {312, 108}, {
        {"Label1", "QLabel", {8, 8, 281, 49}, "Location of redfaction game directory:. The location "
         "of RF.EXE.Usualy C:\\Games\\Redfaction. You MUST use the browse function", kWrap},
        {"TXTRFLocate", "QLineEdit", {8, 64, 209, 19}, "", {{"readOnly", true}}},
        {"CMDBrowse", "QPushButton", {224, 64, 81, 17}, "Browse"},
        {"CMDOK", "QPushButton", {64, 88, 81, 17}, "OK", {{"enabled", false}}},
        {"CMDCancel", "QPushButton", {152, 88, 81, 17}, "Cancel"},
     }, {"TXTRFLocate"}},
    {"Browse", make<Ui::Browse>, "Browse", {172, 189}, {
        {"Drive1", "QComboBox", {8, 8, 153, 21}, nullptr},
        {"Dir1", "QListWidget", {8, 32, 153, 126}, nullptr, {{"selectionMode", kSingle}}},
        {"CMDOK", "QPushButton", {8, 168, 81, 17}, "OK", {{"enabled", false}}},
        {"CMDCancel", "QPushButton", {88, 168, 81, 17}, "Cancel"},
     }, {"Drive1"}},
    {"ShippedMaps", make<Ui::ShippedMaps>, "", {283, 257}, {
        {"CMDShipped", "QPushButton", {56, 8, 81, 17}, "Default Maps"},
        {"CMDCustom", "QPushButton", {144, 8, 81, 17}, "Custom Maps"},
        {"Label1", "QLabel", {8, 32, 81, 17}, "Available Maps:"},
        {"LSTSHMaps", "QListWidget", {8, 48, 113, 173}, nullptr, kSingleUnsorted},
        {"CMDAdd", "QPushButton", {128, 112, 25, 17}, ">", {{"toolTip", "Add"}}},
        {"CMDRemove", "QPushButton", {128, 136, 25, 17}, "<", {{"toolTip", "Remove"}}},
        {"Label2", "QLabel", {160, 32, 81, 17}, "Selected Maps:"},
        {"LSTSelmaps", "QListWidget", {160, 48, 113, 173}, nullptr, kSingleUnsorted},
        {"CMDOK", "QPushButton", {56, 232, 81, 17}, "OK"},
        {"CMDCancel", "QPushButton", {144, 232, 81, 17}, "Cancel"},
     }, {"LSTSHMaps"}},
    {"About", make<Ui::About>, "About-Help", {408, 304}, {
        {"Text1", "QPlainTextEdit", {8, 8, 393, 265}, "",
         {{"readOnly", false}, {"verticalScrollBarPolicy", int(Qt::ScrollBarAlwaysOn)}}},
        {"CMDOK", "QPushButton", {8, 280, 81, 17}, "OK"},
        {"CMDReset", "QPushButton", {96, 280, 81, 17}, "Fix Reg"},
     }, {"CMDOK"}},
    {"Mods", make<Ui::Mods>, "Select a mod from the list", {187, 255}, {
        {"Label1", "QLabel", {8, 8, 169, 17}, "Available Mods"},
        {"LSTMod", "QListWidget", {8, 24, 169, 160}, nullptr, {{"selectionMode", kSingle}}},
        {"Label2", "QLabel", {8, 192, 169, 17}, "Selected Mod"},
        {"TXTMod", "QLineEdit", {8, 208, 169, 19}, "None", {{"readOnly", true}}},
        {"CMDOK", "QPushButton", {8, 232, 81, 17}, "OK"},
        {"CMDCancel", "QPushButton", {96, 232, 81, 17}, "Cancel"},
     }, {"LSTMod"}},
    {"NewConf", make<Ui::NewConf>, "Name?", {190, 55}, {
        {"LBLC", "QLabel", {8, 8, 89, 17}, "Config Name:"},
        {"TXTNewName", "QLineEdit", {80, 8, 105, 19}, "", {{"maxLength", 16}}},
        {"CMDOK", "QPushButton", {8, 32, 81, 17}, "OK"},
        {"CMDCancel", "QPushButton", {104, 32, 81, 17}, "Cancel"},
     }, {"TXTNewName"}},
    {"CopyConfig", make<Ui::CopyConfig>, "Copy Configuration to:", {191, 76}, {
        {"Label1", "QLabel", {8, 8, 129, 17}, "Original Name:"},
        {"TXTOriginal", "QLineEdit", {80, 8, 105, 19}, "", {{"maxLength", 16}, {"readOnly", true}}},
        {"LBLC", "QLabel", {8, 32, 89, 17}, "Copy Name:"},
        {"TXTNewName", "QLineEdit", {80, 32, 105, 19}, "", {{"maxLength", 16}}},
        {"CMDOK", "QPushButton", {8, 56, 81, 17}, "OK"},
        {"CMDCancel", "QPushButton", {104, 56, 81, 17}, "Cancel"},
     }, {"CMDCancel"}},
    {"Text_Rate", make<Ui::Text_Rate>, "Set Text Rate", {226, 161}, {
        {"Label1", "QLabel", {8, 8, 209, 73}, "If you are having trouble with Automessages you may "
         "find that tweaking this setting will solve the problem. But then again it may not. Use "
         "Arrow keys Left,Right to move slider at 10ms intervals", kWrap},
        {"SlideTextRate", "QSlider", {8, 80, 209, 17}, nullptr, slider(10, 210, 10, 100, 10)},
        {"RateText", "QLabel", {8, 112, 209, 17}, ""},
        {"Command1", "QPushButton", {32, 136, 81, 17}, "OK"},
        {"Command2", "QPushButton", {112, 136, 81, 17}, "Cancel"},
     }, {"SlideTextRate"}},
    {"MsgRate", make<Ui::MsgRate>, "Message Rate", {223, 160}, {
        {"Label1", "QLabel", {8, 0, 209, 81}, "With this slider you can set the rate at which "
         "messages are sent to the dedicated server. The values for this control range from 3 "
         "mins to 15 mins in 1 min increments. If messages repeat to often it can annoy players "
         "on your server", kWrap},
        {"SLDMsgRate", "QSlider", {8, 80, 209, 17}, nullptr, slider(3, 15, 1, 3, 1)},
        {"RateText", "QLabel", {8, 112, 209, 17}, ""},
        {"CMDOK", "QPushButton", {32, 136, 81, 17}, "OK"},
        {"CMDCancel", "QPushButton", {112, 136, 81, 17}, "Cancel"},
     }, {"SLDMsgRate"}},
};
// clang-format on

QString captionOf(const QWidget* w) {
    const char* property = qobject_cast<const QComboBox*>(w)        ? "currentText"
                           : qobject_cast<const QPlainTextEdit*>(w) ? "plainText"
                                                                    : "text";
    return w->property(property).toString();
}

QList<QWidget*> controlsOf(QWidget* window) {
    return window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
}

void PrintTo(const FormSpec& f, std::ostream* os) {
    *os << f.name;
}

class Forms : public testing::TestWithParam<FormSpec> {};

TEST_P(Forms, EveryControlHasItsKindPlaceCaptionAndState) {
    const FormSpec& f = GetParam();
    auto window = f.make();
    EXPECT_EQ(window->objectName(), f.name);
    EXPECT_EQ(window->windowTitle(), f.title);
    EXPECT_EQ(window->minimumSize(), f.client) << "the window is fixed size";
    EXPECT_EQ(window->maximumSize(), f.client) << "the window is fixed size";

    QStringList expected, actual;
    for (const Control& c : f.controls) {
        expected << c.name;
        auto* w = window->findChild<QWidget*>(c.name, Qt::FindDirectChildrenOnly);
        ASSERT_NE(w, nullptr) << c.name;
        EXPECT_STREQ(w->metaObject()->className(), c.kind) << c.name;
        EXPECT_EQ(w->geometry(), c.geometry) << c.name;
        if (c.caption) {
            EXPECT_EQ(captionOf(w), QString::fromUtf8(c.caption)) << c.name;
        }
        // Properties left at their default are checked too, where the operator would notice.
        std::map<QByteArray, QVariant> expect{{"enabled", true}};
        if (auto* b = qobject_cast<QAbstractButton*>(w)) {
            expect["checked"] = false;
            EXPECT_EQ(b->group(), nullptr) << c.name;
        }
        if (qobject_cast<QPushButton*>(w)) // Enter presses only the button that has the focus
            expect["default"] = expect["autoDefault"] = false;
        if (auto* combo = qobject_cast<QComboBox*>(w)) {
            expect["count"] = 0;
            if (combo->isEditable()) // typed text is never added to the list
                expect["insertPolicy"] = int(QComboBox::NoInsert);
        }
        for (const auto& [property, value] : c.state)
            expect[property] = value;
        for (const auto& [property, value] : expect) {
            const QVariant is = w->property(property);
            ASSERT_TRUE(is.isValid()) << c.name << "." << property.constData();
            EXPECT_EQ(value.typeId() == QMetaType::Int ? QVariant(is.toInt()) : is, value)
                << c.name << "." << property.constData();
        }
    }
    for (QWidget* w : controlsOf(window.get()))
        actual << w->objectName();
    expected.sort();
    actual.sort();
    EXPECT_EQ(actual, expected) << "the form holds exactly the listed controls";
}

TEST_P(Forms, FocusGoesFirstWhereTheOperatorStarts) {
    const FormSpec& f = GetParam();
    auto window = f.make();
    QStringList order, prefix(f.focusOrder.begin(), f.focusOrder.end());
    for (QWidget* w = window->nextInFocusChain(); w != window.get(); w = w->nextInFocusChain())
        if (w->parentWidget() == window.get() && (w->focusPolicy() & Qt::TabFocus) &&
            !order.contains(w->objectName()))
            order << w->objectName();
    EXPECT_EQ(order.mid(0, prefix.size()), prefix);

    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), f.focusOrder.front());
}

INSTANTIATE_TEST_SUITE_P(AllWindows, Forms, testing::ValuesIn(kForms),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Forms, HeadingsCountdownAndLaunchUseTheirOwnType) {
    auto window = make<Ui::Hostwarden>();
    const QString family = QApplication::font().family();
    // The form holds whole points: 10 for the headings' 9.75.
    for (auto [name, points] :
         {std::pair{"Label13_0", 10}, {"Label13_1", 10}, {"LBLCount", 10}, {"CMDLaunch", 24}}) {
        const QFont font = window->findChild<QWidget*>(name)->font();
        EXPECT_EQ(std::tuple(font.family(), font.pointSizeF(), font.bold()),
                  std::tuple(family, double(points), true))
            << name;
    }
    EXPECT_EQ(window->findChild<QWidget*>("Label1_0")->font(), QApplication::font());
}

TEST(Forms, PicturesLoadFromTheResources) {
    auto window = make<Ui::Hostwarden>();
    EXPECT_EQ(window->findChild<QLabel*>("Image1")->pixmap().size(), QSize(640, 200));
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
    const QSize size(fm.horizontalAdvance(text), fm.height());
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
        const QString where = window->objectName() + "." + w->objectName();
        auto fault = [&](const char* what, const auto&... args) {
            QString text = where + ": " + what;
            ((text = text.arg(args)), ...);
            faults << text;
        };
        auto* label = qobject_cast<QLabel*>(w);
        if (label && label->wordWrap()) {
            if (const int needed = label->heightForWidth(label->width()); needed > label->height())
                fault("wrapped text needs %1 px of height, has %2", needed, label->height());
            continue;
        }
        if (auto* combo = qobject_cast<QComboBox*>(w); combo && combo->isEditable()) {
            QStyleOptionComboBox opt;
            opt.initFrom(combo);
            opt.editable = true;
            opt.frame = combo->hasFrame();
            const int field =
                combo->style()
                    ->subControlRect(QStyle::CC_ComboBox, &opt, QStyle::SC_ComboBoxEditField, combo)
                    .width();
            const int needed = QFontMetrics(combo->font()).horizontalAdvance(combo->currentText()) +
                               2 * kLineEditMargin;
            if (needed > field)
                fault("\"%1\" needs %2 px of the edit field, has %3", combo->currentText(), needed,
                      field);
            continue;
        }
        if (!hasCaption(w))
            continue;
        const QRect area = captionArea(w);
        const bool button = qobject_cast<QPushButton*>(w);
        const int left = button  ? kButtonMargin
                         : label ? label->contentsRect().left()
                                 : area.left();
        const int right = w->width() - 1 - (button ? kButtonMargin : 0);
        if (area.left() < left || area.right() > right)
            fault("\"%1\" needs %2 px of width, has %3", captionOf(w), area.width(),
                  right - std::max(area.left(), left) + 1);
        if (const int fontHeight = QFontMetrics(w->font()).height(); fontHeight > w->height())
            fault("font is %1 px high, the control %2", fontHeight, w->height());
        // Controls created later lie on top of this one.
        for (qsizetype j = i + 1; j < controls.size(); ++j)
            if (coverOf(controls[j]).intersects(area.translated(w->pos())))
                fault("\"%1\" lies under %2", captionOf(w), controls[j]->objectName());
    }
    return faults;
}

TEST(Forms, NoCaptionIsCutOffAtTheApplicationFont) {
    // DejaVu Sans is a wide face: at 7 points every caption fits; at 7.5 "Game Password:" and
    // "Original Name:" are cut off, at 8 a dozen more and the "Combo1" of every narrow drop-down.
    ASSERT_EQ(QFontInfo(QApplication::font()).family(), "DejaVu Sans")
        << "the font the windows are laid out for is installed";
    ASSERT_EQ(QApplication::font().pointSizeF(), 7);
    QStringList faults;
    for (const auto& f : kForms) {
        auto window = f.make();
        window->ensurePolished();
        faults << captionsCutOff(window.get());
    }
    EXPECT_TRUE(faults.isEmpty()) << faults.join("\n").toStdString();
}

} // namespace
