#include "platform/qt/QtServices.h"

#include "platform/qt/CoverageCounters.h"

#include <QApplication>
#include <QRandomGenerator>

#include <cstdio>
#include <unistd.h>

void QtBeeper::Beep() {
    QApplication::beep();
}

void ImmediateEnd::EndNow() {
    std::fflush(nullptr);
    WriteCoverageCounters();
    _exit(0);
}

double QtRandom::Next() {
    return QRandomGenerator::global()->generateDouble();
}
