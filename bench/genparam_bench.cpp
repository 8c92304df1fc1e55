// Builds the parameter tree model for a description and answers the display
// role of every cell once; prints both times in milliseconds.
//
//   genparam-bench [FILE] [--runs N]
#include "genparam/genparamtreemodel.h"

#include <GenApi/GenApi.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>

#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QString file;
    int runs = 5;
    const QStringList args = app.arguments();
    for (int i = 1; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--runs") && i + 1 < args.size())
            runs = qMax(1, args[++i].toInt());
        else
            file = args[i];
    }
    if (file.isEmpty()) {
        qint64 largest = 0;
        const QDir corpus(QStringLiteral(ORB_CORPUS_DIR));
        for (const QFileInfo &info : corpus.entryInfoList({ QStringLiteral("*.xml") })) {
            if (info.size() > largest) {
                largest = info.size();
                file = info.filePath();
            }
        }
    }
    GenApi::CNodeMapRef map;
    map._LoadXMLFromFile(file.toUtf8().constData());
    const auto ports = GenApi::ConnectMemoryPorts(map);

    double bestBuild = 1e300, bestDisplay = 1e300;
    int rows = 0, cells = 0;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        OrbGui::GenParamTreeModel model(static_cast<GenApi::INodeMap *>(map));
        bestBuild = qMin(bestBuild, timer.nsecsElapsed() / 1e6);

        map._InvalidateNodes();
        rows = cells = 0;
        timer.restart();
        std::function<void(const QModelIndex &)> walk = [&](const QModelIndex &parent) {
            for (int row = 0; row < model.rowCount(parent); ++row) {
                ++rows;
                for (int column = 0; column < 2; ++column) {
                    model.index(row, column, parent).data(Qt::DisplayRole);
                    ++cells;
                }
                walk(model.index(row, 0, parent));
            }
        };
        walk(QModelIndex());
        bestDisplay = qMin(bestDisplay, timer.nsecsElapsed() / 1e6);
    }
    std::printf("%s: %d rows, %d cells, best of %d runs\n", qPrintable(QFileInfo(file).fileName()),
                rows, cells, runs);
    std::printf("  build the model            %8.2f ms\n", bestBuild);
    std::printf("  display role of every cell %8.2f ms\n", bestDisplay);
    return 0;
}
