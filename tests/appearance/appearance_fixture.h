// A program folder of its own and a fresh colour window for each test.
#pragma once

#include "appearance/colour_table.h"
#include "appearance/frm_colors.h"
#include "base/paths.h"
#include "base/profile_file.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "values/program_values.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

class AppearanceTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(folder_.isValid());
        base::SetProgramFolder(folder_.path());
        values::Program() = {};
        forms::Forms::Instance().SetAllGone({});
        appearance::RegisterForms();
    }

    void TearDown() override {
        forms::SetInputBoxAnswer({});
        forms::Forms::Instance().Clear();
        base::SetProgramFolder({});
    }

    QString Path(const QString& name) const { return folder_.path() + u'/' + name; }

    QString Stored(const QString& key, const QString& file = QStringLiteral("settings.ini")) const {
        return base::GetPrivateProfileStringW(QStringLiteral("colors"), key, {}, 100, Path(file));
    }

    void Write(const QString& name, const QByteArray& bytes) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QTemporaryDir folder_;
};
