// What most sources include, as far as a target links it. Compiled once a target in builds with QUORVANE_PRECOMPILE;
// never included by hand.
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#if __has_include(<QImage>)
#include <QFont>
#include <QImage>
#include <QPainter>
#endif
#if __has_include(<QWidget>)
#include <QApplication>
#include <QMouseEvent>
#include <QWidget>
#endif
#ifdef QUORVANE_TEST
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#endif
