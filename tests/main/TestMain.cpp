#include <QApplication>
#include <QFont>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 7));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
