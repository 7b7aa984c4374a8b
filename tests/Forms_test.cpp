// Checks what an operator notices in every window's form: captions that fit and can be read,
// where the keyboard focus starts, Enter pressing only the focused button, and no resizing.
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

void PrintTo(const QString& value, std::ostream* os) {
    *os << '"' << value.toStdString() << '"';
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

struct Window {
    const char* name;
    std::function<std::unique_ptr<QWidget>()> make;
    std::vector<const char*> focusOrder; // the start of the keyboard focus order
};

// clang-format off
const std::vector<Window> kWindows = {
    {"Hostwarden", make<Ui::Hostwarden>, {"OPTCTF", "OPTDM", "OPTTDM", "TXTConfName", "TXTServName",
                                          "TXTPassword", "TXTRconPass", "CMDLaunch", "CMDAbout"}},
    {"Setup", make<Ui::Setup>, {"TXTRFLocate"}},
    {"Browse", make<Ui::Browse>, {"Drive1"}},
    {"ShippedMaps", make<Ui::ShippedMaps>, {"LSTSHMaps"}},
    {"About", make<Ui::About>, {"CMDOK"}},
    {"Mods", make<Ui::Mods>, {"LSTMod"}},
    {"NewConf", make<Ui::NewConf>, {"TXTNewName"}},
    {"CopyConfig", make<Ui::CopyConfig>, {"CMDCancel"}},
    {"Text_Rate", make<Ui::Text_Rate>, {"SlideTextRate"}},
    {"MsgRate", make<Ui::MsgRate>, {"SLDMsgRate"}},
};
// clang-format on

QString captionOf(const QWidget* w) {
    return w->property("text").toString();
}

QList<QWidget*> controlsOf(QWidget* window) {
    return window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
}

void PrintTo(const Window& f, std::ostream* os) {
    *os << f.name;
}

class Forms : public testing::TestWithParam<Window> {};

TEST_P(Forms, FixedSizeAndEnterPressesOnlyTheFocusedButton) {
    auto window = GetParam().make();
    EXPECT_FALSE(window->minimumSize().isEmpty());
    EXPECT_EQ(window->minimumSize(), window->maximumSize()) << "the window cannot be resized";
    for (auto* button : window->findChildren<QPushButton*>())
        EXPECT_FALSE(button->isDefault() || button->autoDefault())
            << button->objectName().toStdString();
}

TEST_P(Forms, FocusGoesFirstWhereTheOperatorStarts) {
    const Window& f = GetParam();
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

INSTANTIATE_TEST_SUITE_P(AllWindows, Forms, testing::ValuesIn(kWindows),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Forms, TypingStopsAtTheLengthTheStoreKeeps) {
    const struct {
        std::function<std::unique_ptr<QWidget>()> make;
        const char* field;
        int limit;
    } rows[] = {{make<Ui::NewConf>, "TXTNewName", 16},
                {make<Ui::CopyConfig>, "TXTNewName", 16},
                {make<Ui::Hostwarden>, "TXTMess_0", 255},
                {make<Ui::Hostwarden>, "TXTMess_3", 255}};
    for (const auto& row : rows) {
        auto window = row.make();
        auto* edit = window->findChild<QLineEdit*>(row.field);
        ASSERT_NE(edit, nullptr) << row.field;
        edit->clear();
        QTest::keyClicks(edit, QString(row.limit + 1, 'x'));
        EXPECT_EQ(edit->text().size(), row.limit)
            << window->objectName().toStdString() << "." << row.field;
    }
}

TEST(Forms, TheBannerAndIconShow) {
    auto window = make<Ui::Hostwarden>();
    EXPECT_FALSE(window->findChild<QLabel*>("Image1")->pixmap().isNull());
    EXPECT_FALSE(window->windowIcon().isNull());
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
    for (const auto& f : kWindows) {
        auto window = f.make();
        window->ensurePolished();
        faults << captionsCutOff(window.get());
    }
    EXPECT_TRUE(faults.isEmpty()) << faults.join("\n").toStdString();
}

} // namespace
