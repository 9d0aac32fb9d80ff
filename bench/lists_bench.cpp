// Lists of 10,000 rows: a click on a column (with its repaint) within 100 ms, a scroll step within 16 ms; filling a
// hidden list, and sizing its columns.
#include "base/yield.h"
#include "forms/form.h"
#include "suite/list_header.h"
#include "suite/list_tree.h"
#include "suite/list_view.h"

#include <QApplication>
#include <QScrollBar>
#include <benchmark/benchmark.h>

namespace {

constexpr int rows = 10000;

// Texts as devices have them, in no order.
QString TextOf(int row, int column) {
    const quint32 mixed = (quint32(row) * 2654435761U) ^ (quint32(column) * 40503U);
    switch (column) {
    case 0:
        return QStringLiteral("Device %1 of the system board").arg(mixed % 100000);
    case 1:
        return QStringLiteral("Maker number %1").arg(mixed % 97);
    case 2:
        return QStringLiteral("(%1) OK").arg(mixed % 3);
    case 3:
        return QStringLiteral("System devices");
    case 4:
        return QStringLiteral("%1.%2").arg(mixed % 11).arg(mixed % 1000);
    default:
        return QStringLiteral("PCI\\VEN_%1&DEV_%2&SUBSYS_00000000&REV_01|PCI\\VEN_%1&DEV_%2|")
            .arg(mixed % 65536, 4, 16, QLatin1Char('0'))
            .arg(mixed >> 16, 4, 16, QLatin1Char('0'));
    }
}

void Fill(suite::ListItems& items) {
    for (int row = 0; row < rows; ++row) {
        suite::ListItem* item = items.Add(TextOf(row, 0));
        for (int column = 1; column < 6; ++column)
            item->SetSubItems(column, TextOf(row, column));
    }
}

class Window {
  public:
    Window()
        : form(QStringLiteral("FrmBench"), 11250, 8250),
          list(new suite::ListView(form.Client(), QStringLiteral("LV"))) {
        list->Move(0, 0, 11250, 8250);
        for (int column = 0; column < 6; ++column)
            list->ListItems().AddColumn(QString::number(column), QStringLiteral("Column"), 1500);
        form.Show();
        QApplication::processEvents();
    }
    forms::Form form;
    suite::ListView* list;
};

// The whole list drawn anew, whether the platform would show it or not.
void Draw(suite::ListView& list, QImage& image) { list.render(&image); }

void ColumnClick(benchmark::State& state) {
    Window window;
    QImage image(window.list->size(), QImage::Format_RGB32);
    Fill(window.list->ListItems());
    int key = 0;
    for (auto step : state) {
        window.list->SetSorted(false);
        key = (key + 1) % 6;
        window.list->SetSortKey(key);
        window.list->SetSorted(true);
        Draw(*window.list, image);
    }
}
BENCHMARK(ColumnClick)->Unit(benchmark::kMillisecond);

void ScrollStep(benchmark::State& state) {
    Window window;
    Fill(window.list->ListItems());
    QApplication::processEvents();
    QImage image(window.list->size(), QImage::Format_RGB32);
    QScrollBar* bar = window.list->Tree()->verticalScrollBar();
    for (auto step : state) {
        bar->setValue((bar->value() + 3) % bar->maximum());
        Draw(*window.list, image);
    }
}
BENCHMARK(ScrollStep)->Unit(benchmark::kMillisecond);

void FillHidden(benchmark::State& state) {
    Window window;
    for (auto step : state) {
        window.list->SetVisible(false);
        window.list->ListItems().Clear();
        Fill(window.list->ListItems());
        window.list->SetSorted(true);
        window.list->SetVisible(true);
        QApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * rows);
}
BENCHMARK(FillHidden)->Unit(benchmark::kMillisecond);

void AutoSize(benchmark::State& state) {
    Window window;
    Fill(window.list->ListItems());
    for (auto step : state) {
        for (int column = 0; column < 6; ++column)
            window.list->SetColumnWidthPixels(column, suite::autoSizeUseHeader);
    }
}
BENCHMARK(AutoSize)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    base::SetYieldGate(0);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
