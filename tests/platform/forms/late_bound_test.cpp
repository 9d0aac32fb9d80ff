#include "forms/late_bound.h"

#include "base/colour.h"
#include "forms/form.h"
#include "forms/label.h"

#include <gtest/gtest.h>

TEST(LateBound, SetsWhatIsThereAndCreatesNothing) {
    forms::Form form("FrmTest", 3000, 3000);
    forms::Label label(form.Client(), "Label1");
    const auto red = QVariant::fromValue(base::Colour::FromRgb(255, 0, 0));
    EXPECT_EQ(forms::SetProperty(&label, "ForeColor", red), forms::PropertyResult::Set);
    EXPECT_EQ(label.ForeColor().Value(), 0xFFU);
    EXPECT_EQ(forms::SetProperty(&label, "forecolor", red), forms::PropertyResult::Absent);
    EXPECT_EQ(forms::SetProperty(&label, "PaintManager.ColorSet.PaneFace", red), forms::PropertyResult::Absent);
    EXPECT_EQ(forms::SetProperty(&label, "Name", QStringLiteral("x")), forms::PropertyResult::Refused);
    EXPECT_EQ(forms::SetProperty(nullptr, "Name", red), forms::PropertyResult::Absent);
    EXPECT_TRUE(label.dynamicPropertyNames().isEmpty());
    EXPECT_EQ(forms::GetProperty(&label, "Name").toString(), "Label1");
    EXPECT_FALSE(forms::GetProperty(&label, "Nothing").isValid());
    EXPECT_FALSE(forms::CallByName(&label, "ApplyBackGroundColor"));
}
