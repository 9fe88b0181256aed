#include "ReportGenerator.h"
#include "ReportTree.h"
#include "WorkFolder.h"

#include <quillon/chemistry/Formula.h>
#include <quillon/chemistry/IsotopeModel.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace quillon::generate {
namespace {

using testing::ReadReportTree;
using testing::Section;

std::string ReadAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string WorkPath(const std::string& name) {
    return testing::ProcessWorkFolder() + "/" + name;
}

// A small batch that still has a second control group.
GeneratorOptions SmallBatch(const std::string& name) {
    GeneratorOptions options;
    options.reportPath = WorkPath(name);
    options.iniPath = WorkPath(name + ".ini");
    options.samples = 7;
    options.pointsPerTrace = 600;
    options.noisePeaks = 6;
    return options;
}

// A batch generated once and shared by the structure tests.
struct Generated {
    explicit Generated(GeneratorOptions generatorOptions)
        : options(std::move(generatorOptions)), summary(GenerateBatch(options)),
          tree(ReadReportTree(options.reportPath)) {}
    GeneratorOptions options;
    BatchSummary summary;
    Section tree;
};

// Batch 0: small, with a second control group. Batch 1: every scale option turned up, another
// seed, searched combinations of biotransformations and all the unexpected products.
const Generated& Batch(int which = 0) {
    static const Generated small(SmallBatch("structure.txt"));
    static const Generated scaled([] {
        GeneratorOptions options = SmallBatch("scaled.txt");
        options.samples = 6;
        options.metabolites = 40;
        options.unexpected = 6;
        options.surveySpectra = 3;
        options.noisePeaks = 40;
        options.pointsPerTrace = 1500;
        options.seed = 7;
        return options;
    }());
    return which == 0 ? small : scaled;
}

// The consistency checks run on both batches.
class ReportConsistencyTest : public ::testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(SmallAndScaled, ReportConsistencyTest, ::testing::Values(0, 1));

// The points of a chromatogram, its continuation sections included, as a reader scales them.
std::vector<std::pair<double, double>>
TracePoints(const Section& chromatogram, const std::vector<const Section*>& appends, bool percent) {
    const double maximum = static_cast<float>(chromatogram.Number("MaxIntensity"));
    std::vector<std::pair<double, double>> points;
    auto add = [&](const Section& owner) {
        for (const Section* trace : owner.Children("TRACE")) {
            for (const auto& row : trace->rows) {
                double y = std::atof(row[1].c_str());
                if (percent) {
                    y = static_cast<float>(y) * static_cast<float>(maximum) * 0.01f;
                }
                points.emplace_back(std::atof(row[0].c_str()), y);
            }
        }
    };
    add(chromatogram);
    for (const Section* append : appends) {
        add(*append);
    }
    return points;
}

// The same report name in its own folder, so that runs can be compared byte for byte.
GeneratorOptions InFolder(GeneratorOptions options, const std::string& folder) {
    std::filesystem::create_directories(WorkPath(folder));
    options.reportPath = WorkPath(folder + "/report.txt");
    options.iniPath = WorkPath(folder + "/Tarnwick.ini");
    return options;
}

TEST(ReportGeneratorTest, SameSeedSameBytesOtherSeedOtherBytesWindowsLineEndsOnRequest) {
    GeneratorOptions small = SmallBatch("unused");
    small.samples = 3;
    const GeneratorOptions first = InFolder(small, "first");
    const GeneratorOptions second = InFolder(small, "second");
    GenerateBatch(first);
    GenerateBatch(second);
    const std::string report = ReadAll(first.reportPath);
    EXPECT_TRUE(report == ReadAll(second.reportPath));
    EXPECT_TRUE(ReadAll(first.iniPath) == ReadAll(second.iniPath));
    EXPECT_EQ(report.find('\r'), std::string::npos);

    GeneratorOptions reseeded = InFolder(small, "reseeded");
    reseeded.seed = small.seed + 1;
    GenerateBatch(reseeded);
    EXPECT_FALSE(report == ReadAll(reseeded.reportPath));

    GeneratorOptions windows = InFolder(small, "windows");
    windows.windowsLineEnds = true;
    GenerateBatch(windows);
    const std::string crlf = ReadAll(windows.reportPath);
    std::string unix;
    size_t lineEnds = 0;
    for (size_t i = 0; i < crlf.size(); ++i) {
        if (crlf[i] == '\r' && i + 1 < crlf.size() && crlf[i + 1] == '\n') {
            ++lineEnds;
            continue;
        }
        unix.push_back(crlf[i]);
    }
    EXPECT_TRUE(unix == report);
    EXPECT_EQ(lineEnds, static_cast<size_t>(std::count(report.begin(), report.end(), '\n')));
    EXPECT_NE(ReadAll(windows.iniPath).find("\r\n"), std::string::npos);
}

TEST_P(ReportConsistencyTest, PeaksAreTheIntegralsOfTheirTraces) {
    struct Trace {
        const Section* chromatogram;
        std::vector<const Section*> continued;
        bool percent;
    };
    int checked = 0;
    for (const Section* sample : Batch(GetParam()).tree.Children("SAMPLE")) {
        std::vector<Trace> traces;
        for (const Section* function : sample->Children("FUNCTION")) {
            for (const Section* chromatogram : function->Children("CHROMATOGRAM")) {
                Trace trace{chromatogram, {}, function->Field("Type") == "Diode Array"};
                for (const Section* append : function->Children("CHROMATOGRAM_APPEND")) {
                    if (append->Field("TraceNumber") == chromatogram->Field("TraceNumber")) {
                        trace.continued.push_back(append);
                    }
                }
                traces.push_back(trace);
            }
        }
        for (const Section* analog : sample->Children("ANALOG")) {
            traces.push_back({analog, {}, false});
        }
        for (const Trace& trace : traces) {
            const auto points = TracePoints(*trace.chromatogram, trace.continued, trace.percent);
            double maximum = 0.0;
            for (const auto& point : points) {
                maximum = std::max(maximum, point.second);
            }
            EXPECT_NEAR(maximum, trace.chromatogram->Number("MaxIntensity"),
                        trace.percent ? 1e-3 * maximum : 0.5);
            std::vector<const Section*> peaks = trace.chromatogram->Children("PEAK");
            for (const Section* append : trace.continued) {
                for (const Section* peak : append->Children("PEAK")) {
                    peaks.push_back(peak);
                }
            }
            for (const Section* peak : peaks) {
                const auto& row = *std::find_if(peak->rows.begin(), peak->rows.end(),
                                                [](const auto& r) { return r[0] == "Peak"; });
                const double start = std::atof(row[1].c_str());
                const double end = std::atof(row[2].c_str());
                double area = 0.0;
                double height = 0.0;
                for (size_t i = 1; i < points.size(); ++i) {
                    if (points[i - 1].first >= start - 1e-9 && points[i].first <= end + 1e-9) {
                        area += 0.5 * (points[i].second + points[i - 1].second) *
                                (points[i].first - points[i - 1].first);
                    }
                    if (points[i].first >= start - 1e-9 && points[i].first <= end + 1e-9) {
                        height = std::max(height, points[i].second);
                    }
                }
                EXPECT_NEAR(peak->Number("AreaAbs"), area, 1e-4 * area + 1e-3);
                EXPECT_NEAR(peak->Number("Height"), height, 1e-4 * height + 0.01);
                EXPECT_GT(peak->Number("Width"), 0.0);
                // The apex lies in the extent (on its edge where a neighbour overlaps).
                EXPECT_LE(start, peak->Number("Time"));
                EXPECT_GE(end, peak->Number("Time"));
                EXPECT_LT(start, end);
                ++checked;
            }
        }
    }
    EXPECT_GT(checked, 50);
}

// Finds the chromatogram peak that a metabolite's peak identifier names.
const Section* FindPeak(const Section& sample, int peakId, int function, int trace) {
    for (const Section* f : sample.Children("FUNCTION")) {
        if (f->Number("Function") != function) {
            continue;
        }
        for (const Section* c : f->Children("CHROMATOGRAM")) {
            if (c->Number("TraceNumber") != trace) {
                continue;
            }
            for (const Section* p : c->Children("PEAK")) {
                if (p->Number("Peak ID") == peakId) {
                    return p;
                }
            }
        }
    }
    return nullptr;
}

bool HasSpectrum(const Section& sample, int function, int peakId) {
    for (const Section* f : sample.Children("FUNCTION")) {
        if (f->Number("Function") == function) {
            for (const Section* s : f->Children("SPECTRUM")) {
                if (s->Number("Peak ID") == peakId) {
                    return true;
                }
            }
        }
    }
    return false;
}

TEST_P(ReportConsistencyTest, MetaboliteRowsPointAtPeaksAndPartnersFollowTheirParents) {
    int partners = 0;
    for (const Section* sample : Batch(GetParam()).tree.Children("SAMPLE")) {
        for (const char* table : {"EXPECTED METABOLITES", "UNEXPECTED METABOLITES"}) {
            int lastPeak = -1;
            int lastCluster = -1;
            for (const auto& row : sample->Child(table)->rows) {
                ASSERT_GE(row.size(), 13u);
                std::stringstream identifiers(row[6]);
                std::string identifier;
                bool first = true;
                while (std::getline(identifiers, identifier, ',')) {
                    int peak = 0, function = 0, trace = 0, cluster = 0;
                    double mz = 0.0, mass = 0.0;
                    const int scanned = std::sscanf(identifier.c_str(), "%d/%d/%d/%lf/%d/%lf",
                                                    &peak, &function, &trace, &mz, &cluster, &mass);
                    if (row[3] == "0") {
                        EXPECT_EQ(identifier, "0"); // not found: no peak
                        continue;
                    }
                    ASSERT_EQ(scanned, 6) << identifier;
                    const Section* chromatogramPeak = FindPeak(*sample, peak, function, trace);
                    ASSERT_NE(chromatogramPeak, nullptr) << identifier;
                    EXPECT_EQ(chromatogramPeak->Number("Peak Cluster ID"), cluster);
                    EXPECT_TRUE(HasSpectrum(*sample, function, peak)) << identifier;
                    if (row[7] == "MSe fragments") {
                        EXPECT_EQ(function, 2);
                        EXPECT_EQ(peak, lastPeak);
                        EXPECT_EQ(cluster, lastCluster);
                        ++partners;
                    } else if (first) {
                        EXPECT_EQ(function, 1);
                        lastPeak = peak;
                        lastCluster = cluster;
                    }
                    first = false;
                }
            }
        }
        if (const Section* msms = sample->Child("MSMS CORRELATION")) {
            for (const auto& row : msms->Child("METABOLITES")->rows) {
                const int trace = std::atoi(row[3].c_str());
                const int peak = std::atoi(row[6].c_str());
                EXPECT_NE(FindPeak(*sample, peak, 2, trace), nullptr) << row[11];
            }
        }
    }
    EXPECT_GT(partners, 5);
}

TEST(ReportGeneratorTest, ScaleOptionsSetTheAmounts) {
    const Generated& scaled = Batch(1);
    ASSERT_EQ(scaled.summary.samples.size(), 6u);
    for (const SampleSummary& sample : scaled.summary.samples) {
        for (const FunctionSummary& function : sample.functions) {
            for (const ChromatogramSummary& chromatogram : function.chromatograms) {
                EXPECT_EQ(chromatogram.points, 1500);
            }
            if (function.type == "MS") {
                EXPECT_EQ(
                    std::count(function.spectrumPeakIds.begin(), function.spectrumPeakIds.end(), 0),
                    3); // survey spectra
            }
        }
    }
    // All 40 searched biotransformations (no product twice) and the parent have a row; the
    // samples show more unexpected products than the default three.
    const Section& last = *scaled.tree.Children("SAMPLE").back();
    std::set<std::string> searched;
    for (const auto& row : last.Child("EXPECTED METABOLITES")->rows) {
        if (row[7] != "MSe fragments" && row[7] != "Exclude Mass") {
            searched.insert(row[7]);
        }
    }
    EXPECT_EQ(searched.size(), 41u);
    std::set<std::string> unexpected;
    for (const Section* sample : scaled.tree.Children("SAMPLE")) {
        for (const auto& row : sample->Child("UNEXPECTED METABOLITES")->rows) {
            // The nominal mass names the product (the measured mass varies from sample to sample).
            unexpected.insert(std::to_string(std::lround(std::atof(row[1].c_str()))));
        }
    }
    EXPECT_GT(unexpected.size(), 3u);
    // Spectra carry the requested noise: many more points than the small batch's.
    EXPECT_GT(scaled.summary.samples.back().functions[0].spectrumPoints.front(),
              Batch(0).summary.samples.back().functions[0].spectrumPoints.front() + 20);
}

TEST(ReportGeneratorTest, SpectraShowIsotopeClustersAndFragmentsAtRealNeutralLosses) {
    const Section& sample = *Batch().tree.Children("SAMPLE")[3];
    const CFormula parentIon = CFormula::Parse("C17H20ClN2S");
    const double parentMz = parentIon.MonoisotopicMass() - CElements::kElectronMass;
    CIsotopeModel model(parentIon);
    const double mPlus2 = model.Peaks()[2].relativeIntensity; // 37Cl and 34S

    auto intensityNear = [](const Section& spectrum, double mz) {
        double best = 0.0;
        for (const auto& row : spectrum.Child("MS")->rows) {
            if (std::fabs(std::atof(row[0].c_str()) - mz) < mz * 10e-6) {
                best = std::max(best, std::atof(row[1].c_str()));
            }
        }
        return best;
    };
    const Section* low = nullptr;
    const Section* high = nullptr;
    for (const Section* f : sample.Children("FUNCTION")) {
        for (const Section* s : f->Children("SPECTRUM")) {
            if (s->Number("Peak ID") == 1) { // the parent
                (f->Number("Function") == 1 ? low : high) = s;
            }
        }
    }
    ASSERT_NE(low, nullptr);
    ASSERT_NE(high, nullptr);
    EXPECT_DOUBLE_EQ(intensityNear(*low, parentMz), 100.0);
    EXPECT_NEAR(intensityNear(*low, model.Peaks()[2].mass), mPlus2, 0.1 * mPlus2);
    EXPECT_NEAR(low->Number("BPM"), parentMz, parentMz * 5e-6);

    // The high-energy spectrum: loss of dimethylamine, then of hydrogen chloride, each with the
    // chlorine isotope peak where chlorine is left; and the side-chain iminium ion.
    const double dimethylamine = CFormula::Parse("C2H7N").MonoisotopicMass();
    const double fragment = parentMz - dimethylamine;
    EXPECT_GT(intensityNear(*high, fragment), 50.0);
    EXPECT_NEAR(intensityNear(*high, fragment + 1.99705) / intensityNear(*high, fragment),
                0.32 + 0.045, 0.08);
    EXPECT_GT(intensityNear(*high, fragment - CFormula::Parse("HCl").MonoisotopicMass()), 1.0);
    EXPECT_GT(intensityNear(*high, CFormula::Parse("C5H12N").MonoisotopicMass() -
                                       CElements::kElectronMass),
              20.0);
    EXPECT_LT(intensityNear(*high, parentMz), 40.0);
}

TEST(ReportGeneratorTest, MolfileIsACompleteTwoDimensionalStructureOfTheParent) {
    const Section& list = *Batch().tree.Children("SAMPLE")[0]->Child("MOLFILE LIST");
    EXPECT_EQ(list.Field("Reference"), "structure.txt_Parent");
    const auto& lines = list.Child("MOLFILE")->rows;
    ASSERT_GT(lines.size(), 5u);
    EXPECT_EQ(lines[1][0].substr(20, 2), "2D");
    const int atoms = std::atoi(lines[3][0].substr(0, 3).c_str());
    const int bonds = std::atoi(lines[3][0].substr(3, 3).c_str());
    ASSERT_EQ(lines.size(), static_cast<size_t>(4 + atoms + bonds + 1));
    EXPECT_EQ(lines.back()[0], "M  END");
    CFormula heavy;
    for (int a = 0; a < atoms; ++a) {
        const std::string symbol = lines[4 + a][0].substr(31, 3);
        const std::string trimmed = symbol.substr(0, symbol.find(' '));
        heavy.SetCount(trimmed, heavy.Count(trimmed) + 1);
    }
    CFormula parent = CFormula::Parse("C17H19ClN2S");
    parent.SetCount("H", 0);
    EXPECT_EQ(heavy, parent);
    std::vector<int> valence(static_cast<size_t>(atoms) + 1, 0);
    for (int b = 0; b < bonds; ++b) {
        const std::string& line = lines[4 + atoms + b][0];
        const int first = std::atoi(line.substr(0, 3).c_str());
        const int second = std::atoi(line.substr(3, 3).c_str());
        const int order = std::atoi(line.substr(6, 3).c_str());
        ASSERT_TRUE(first >= 1 && first <= atoms && second >= 1 && second <= atoms);
        valence[static_cast<size_t>(first)] += order;
        valence[static_cast<size_t>(second)] += order;
    }
    // Implicit hydrogens fill carbon to four: the structure must carry the formula's 19.
    int hydrogens = 0;
    for (int a = 1; a <= atoms; ++a) {
        const std::string symbol = lines[3 + a][0].substr(31, 2);
        if (symbol == "C ") {
            hydrogens += 4 - valence[static_cast<size_t>(a)];
        }
    }
    EXPECT_EQ(hydrogens, 19);
}

} // namespace
} // namespace quillon::generate
