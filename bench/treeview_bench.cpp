// Times the parameter tree view on generated descriptions of 1,000 to 50,000
// features (categories of 50 integer features, each over its own polled
// register, at Beginner, Expert and Guru in turn) with a real view on the X
// server: build, show, expand all, visibility Beginner to Guru and back,
// name filter set and cleared, and one poll in which every register changed.
// Prints the median of the runs per operation, in milliseconds.
//
//   treeview-bench [--features N[,N...]] [--runs R]
//
// Not a test: run it on a virtual X server (scripts/run-bench.sh does).
#include <OrbGui/orbgenparamtreeview.h>

#include <GenApi/GenApi.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTreeView>
#include <QWindow>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr int FeaturesPerCategory = 50;

std::string generate(int features)
{
    static const char *levels[] = { "Beginner", "Expert", "Guru" };
    const int categories = (features + FeaturesPerCategory - 1) / FeaturesPerCategory;
    std::string xml = "<?xml version=\"1.0\"?>\n<RegisterDescription ModelName=\"Bench\" "
                      "VendorName=\"Orb\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" "
                      "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" "
                      "MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"0\" "
                      "VersionGuid=\"0\">\n<Category Name=\"Root\">";
    xml.reserve(static_cast<size_t>(features) * 420);
    for (int c = 0; c < categories; ++c)
        xml += "<pFeature>Group" + std::to_string(c) + "</pFeature>";
    xml += "</Category>\n";
    for (int c = 0; c < categories; ++c) {
        xml += "<Category Name=\"Group" + std::to_string(c) + "\">";
        for (int f = c * FeaturesPerCategory; f < std::min(features, (c + 1) * FeaturesPerCategory);
             ++f)
            xml += "<pFeature>Feature" + std::to_string(f) + "</pFeature>";
        xml += "</Category>\n";
    }
    for (int f = 0; f < features; ++f) {
        const std::string n = std::to_string(f);
        xml += "<Integer Name=\"Feature" + n + "\"><Visibility>" + levels[f % 3]
            + "</Visibility><pValue>Register" + n
            + "</pValue><Min>0</Min><Max>1000000</Max>"
              "</Integer>\n<IntReg Name=\"Register"
            + n + "\"><Address>" + std::to_string(4 * f)
            + "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
              "<Cachable>NoCache</Cachable><PollingTime>100</PollingTime><Sign>Unsigned</Sign>"
              "<Endianess>LittleEndian</Endianess></IntReg>\n";
    }
    xml += "<Port Name=\"Device\"/>\n</RegisterDescription>\n";
    return xml;
}

double ms(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

// Lets the view catch up: pending layouts, the repaint they cause.
void settle(QWidget &view)
{
    QCoreApplication::processEvents();
    view.repaint();
    QCoreApplication::processEvents();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    std::vector<int> sizes { 1000, 5000, 20000, 50000 };
    int runs = 5;
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); i += 2) {
        if (args[i] == QLatin1String("--features")) {
            sizes.clear();
            for (const QString &n : args[i + 1].split(QLatin1Char(',')))
                sizes.push_back(n.toInt());
        } else if (args[i] == QLatin1String("--runs")) {
            runs = std::max(1, args[i + 1].toInt());
        } else {
            std::fprintf(stderr, "treeview-bench: unknown option %s\n", qPrintable(args[i]));
            return 2;
        }
    }

    const char *operations[]
        = { "build",          "show",       "expand all",     "Beginner->Guru",
            "Guru->Beginner", "filter set", "filter cleared", "poll, all changed" };
    std::printf("%-18s", "features");
    for (int size : sizes)
        std::printf("%10d", size);
    std::printf("\n");
    std::map<std::string, std::vector<double>> table;
    for (int size : sizes) {
        const std::string xml = generate(size);
        GenApi::CNodeMapRef map;
        map._LoadXMLFromString(xml.c_str());
        GenApi::CMemoryPort port;
        map._Connect(&port);
        map._Poll(1000); // the first poll only learns the registers' values
        std::map<std::string, std::vector<double>> samples;
        for (int run = 0; run < runs; ++run) {
            QElapsedTimer timer;
            timer.start();
            OrbGui::OrbGenParamTreeView view(static_cast<GenApi::INodeMap *>(map));
            samples["build"].push_back(ms(timer));

            view.resize(700, 900);
            timer.restart();
            view.show();
            // Waits for the X server's expose without the test library's
            // 10 ms polling steps.
            QElapsedTimer limit;
            limit.start();
            while (!view.windowHandle() || !view.windowHandle()->isExposed()) {
                if (limit.elapsed() > 5000) {
                    std::fprintf(stderr, "treeview-bench: the view was never shown\n");
                    return 2;
                }
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            }
            settle(view);
            samples["show"].push_back(ms(timer));

            timer.restart();
            view.treeView()->expandAll();
            settle(view);
            samples["expand all"].push_back(ms(timer));

            timer.restart();
            view.setVisibility(OrbGui::Guru);
            settle(view);
            samples["Beginner->Guru"].push_back(ms(timer));

            timer.restart();
            view.setVisibility(OrbGui::Beginner);
            settle(view);
            samples["Guru->Beginner"].push_back(ms(timer));

            auto *filter = view.findChild<QLineEdit *>(QStringLiteral("filterLineEdit"));
            view.setVisibility(OrbGui::Guru);
            view.treeView()->expandAll();
            settle(view);
            timer.restart();
            filter->setText(QStringLiteral("Feature1*"));
            settle(view);
            samples["filter set"].push_back(ms(timer));
            timer.restart();
            filter->clear();
            settle(view);
            samples["filter cleared"].push_back(ms(timer));

            // Every register changes; one poll finds them all.
            for (int f = 0; f < size; ++f) {
                const uint32_t value = uint32_t(run * 7 + f + 1);
                port.Write(&value, 4 * f, 4);
            }
            timer.restart();
            map._Poll(1000);
            settle(view);
            samples["poll, all changed"].push_back(ms(timer));
        }
        for (const char *op : operations)
            table[op].push_back(median(samples[op]));
    }
    for (const char *op : operations) {
        std::printf("%-18s", op);
        for (double value : table[op])
            std::printf("%10.1f", value);
        std::printf("\n");
    }
    std::printf("(milliseconds, median of %d runs)\n", runs);
    return 0;
}
