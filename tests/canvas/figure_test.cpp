// One figure into all formats, and back through programs that others wrote.

#include "app.h"
#include "made_figure.h"
#include "support/files.h"
#include "ui/canvas/picture_writer.h"

#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace nmr {
namespace {

using namespace test;

constexpr int kTimeLimit = 120'000;

std::string Made(PictureFormat format, const std::string& without = {})
{
    auto picture = MakePicture(FigureJob(format, without));
    EXPECT_TRUE(picture) << picture.error().text;
    return picture ? *picture : std::string();
}

bool HasProgram(const char* program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

std::string RunProgram(const QString& program, const QStringList& arguments, const QString& scale = {})
{
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    if (!scale.isEmpty()) environment.insert("QT_SCALE_FACTOR", scale);
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(kTimeLimit) && process.exitCode() == 0)
        << program.toStdString() << ": " << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput().toStdString();
}

constexpr int kRadius = 3;

/// Sums of neighbours along one line of pixels.
void BlurLine(std::vector<float>& values, std::size_t first, std::size_t step, int length)
{
    std::vector<float> line(static_cast<std::size_t>(length));
    for (std::size_t i = 0; i < line.size(); ++i) line[i] = values[first + i * step];
    const auto at = [&](int i) { return line[static_cast<std::size_t>(std::clamp(i, 0, length - 1))]; };
    float sum = 0;
    for (int d = -kRadius; d <= kRadius; ++d) sum += at(d);
    for (int i = 0; i < length; ++i) {
        values[first + static_cast<std::size_t>(i) * step] = sum / (2 * kRadius + 1);
        sum += at(i + kRadius + 1) - at(i - kRadius);
    }
}

/// Red, green and blue of all pixels, each the mean around it, so that a small shift of an edge does not count.
std::vector<float> Blurred(const QImage& image)
{
    const QImage plain = image.convertToFormat(QImage::Format_RGB32);
    const auto width = static_cast<std::size_t>(plain.width()), height = static_cast<std::size_t>(plain.height());
    std::vector<float> values;
    values.reserve(width * height * 3);
    for (int y = 0; y < plain.height(); ++y)
        for (int x = 0; x < plain.width(); ++x) {
            const QRgb color = plain.pixel(x, y);
            for (const int part : {qRed(color), qGreen(color), qBlue(color)})
                values.push_back(static_cast<float>(part));
        }
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t channel = 0; channel < 3; ++channel)
            BlurLine(values, y * width * 3 + channel, 3, plain.width());
    for (std::size_t x = 0; x < 3 * width; ++x) BlurLine(values, x, 3 * width, plain.height());
    return values;
}

QImage Rendered(const std::string& file)
{
    return QImage::fromData(QByteArray::fromStdString(file));
}

/// How much of each object of the figure another picture of it lacks or has otherwise: a share of what the figure
/// without the object would differ by. One that is missing comes out near 1.
class Comparison {
public:
    Comparison() : reference_(Rendered(Made(PictureFormat::bmp))), whole_(Blurred(reference_))
    {
        for (const FigureObject& object : FigureObjects())
            without_.push_back(Blurred(Rendered(Made(PictureFormat::bmp, object.name))));
    }
    double Difference(const std::vector<float>& other, std::size_t object) const
    {
        const auto& without = without_[object];
        double own = 0, differs = 0;
        for (std::size_t i = 0; i < whole_.size(); ++i) {
            const float ink = std::abs(whole_[i] - without[i]);
            if (ink < 3) continue;
            own += static_cast<double>(ink);
            differs += static_cast<double>(std::abs(whole_[i] - other[i]));
        }
        EXPECT_GT(own, 1000) << FigureObjects()[object].name << " can't be seen";
        return differs / own;
    }
    std::vector<float> Scaled(const QImage& other) const
    {
        return Blurred(other.scaled(reference_.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    void ExpectSame(const QImage& other, double most = kMost) const
    {
        ASSERT_FALSE(other.isNull());
        EXPECT_NEAR(double(other.width()) / other.height(), double(reference_.width()) / reference_.height(), 0.02);
        const auto scaled = Scaled(other);
        for (std::size_t i = 0; i < without_.size(); ++i) {
            const double share = Difference(scaled, i);
            EXPECT_LT(share, most) << FigureObjects()[i].name;
            if (std::getenv("NMR1D_FIGURE") != nullptr)
                std::printf("%6.3f %s\n", share, FigureObjects()[i].name.c_str());
        }
    }
    static constexpr double kMost = 0.5;

private:
    QImage reference_;
    std::vector<float> whole_;
    std::vector<std::vector<float>> without_;
};

const Comparison& TheComparison()
{
    static const Comparison comparison;
    return comparison;
}

/// Where the files of a run can be looked at: NMR1D_FIGURE=folder.
struct Folder {
    std::string operator/(const std::string& name) const
    {
        const char* kept = std::getenv("NMR1D_FIGURE");
        return kept != nullptr ? std::string(kept) + "/" + name : own / name;
    }
    TempFolder own;
};

TEST(Figure, AnObjectThatIsMissingIsNoticed)
{
    App();
    if (!HasProgram("rsvg-convert")) GTEST_SKIP() << "librsvg2-bin is not installed";
    const TempFolder folder;
    const auto file = [&](const char* name) { return QString::fromStdString(folder / name); };
    for (std::size_t i = 0; i < FigureObjects().size(); ++i) {
        const std::string& name = FigureObjects()[i].name;
        WriteText(folder / "part.svg", Made(PictureFormat::svg, name));
        RunProgram("rsvg-convert", {"-d", "150", "-p", "150", "-b", "white", "-o", file("part.png"), file("part.svg")});
        const QImage part(file("part.png"));
        EXPECT_GT(TheComparison().Difference(TheComparison().Scaled(part), i), 0.75) << name;
    }
}

TEST(Figure, IsSeenAlikeByOtherPrograms)
{
    App();
    struct Case {
        const char* program;
        const char* input;
        PictureFormat format;
        QStringList arguments;
    };
    const Folder folder;
    const auto file = [&](const char* name) { return QString::fromStdString(folder / name); };
    const Case cases[] = {
        {"pdftoppm", "a.pdf", PictureFormat::pdf, {"-r", "150", "-png", "-singlefile", file("a.pdf"), file("of-pdf")}},
        {"rsvg-convert",
         "a.svg",
         PictureFormat::svg,
         {"-d", "150", "-p", "150", "-b", "white", "-o", file("of-svg.png"), file("a.svg")}},
        {"inkscape",
         "a.emf",
         PictureFormat::emf,
         {"--export-type=png", "--export-dpi=150", "--export-background=white", "-o", file("of-emf.png"),
          file("a.emf")}},
    };
    std::string skipped;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.program);
        WriteText(folder / c.input, Made(c.format));
        if (!HasProgram(c.program)) {
            skipped += std::string(c.program) + " ";
            continue;
        }
        RunProgram(c.program, c.arguments);
        const std::string name = std::string("of-") + (c.input + 2) + ".png";
        TheComparison().ExpectSame(QImage(QString::fromStdString(folder / name)));
    }
    if (!skipped.empty()) GTEST_SKIP() << "not installed: " << skipped;
}

/// The part of a page inside the outermost ink: an office program puts the picture in the middle of a page.
QImage Cropped(const QImage& page)
{
    QRect ink;
    for (int y = 0; y < page.height(); ++y)
        for (int x = 0; x < page.width(); ++x)
            if (qGray(page.pixel(x, y)) < 200) ink |= QRect(x, y, 1, 1);
    return page.copy(ink);
}

TEST(Figure, IsSeenAlikeByAnOfficeProgram)
{
    App();
    if (!HasProgram("soffice") || !HasProgram("pdftoppm")) GTEST_SKIP() << "no office program is installed";
    const Folder folder;
    const auto file = [&](const char* name) { return QString::fromStdString(folder / name); };
    WriteText(folder / "b.emf", Made(PictureFormat::emf));
    // Straight to PNG it gives few pixels.
    RunProgram("soffice", {"-env:UserInstallation=file://" + file("profile"), "--headless", "--convert-to", "pdf",
                           "--outdir", file(""), file("b.emf")});
    RunProgram("pdftoppm", {"-r", "150", "-png", "-singlefile", file("b.pdf"), file("of-b")});
    const QImage drawn = Cropped(QImage(file("of-b.png")));
    QImage page = QImage::fromData(QByteArray::fromStdString(Made(PictureFormat::png)));
    page.fill(Qt::white);
    const double dots = kFigureSize.dpi / kMillimetresPerInch;
    QPainter painter(&page);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(1.9 * dots, 1.9 * dots, 156.2 * dots, 106.2 * dots), drawn); // the frame with its line
    painter.end();
    TheComparison().ExpectSame(page, 0.65); // its lines lie up to a pixel off
}

TEST(Figure, TextStaysTextAndFontsComeAlong)
{
    App();
    const Folder folder;
    const auto svg = Made(PictureFormat::svg), emf = Made(PictureFormat::emf), pdf = Made(PictureFormat::pdf);
    EXPECT_THAT(svg, testing::HasSubstr(">\xCE\xB1\xCE\xB2\xCE\xB3"));
    EXPECT_THAT(svg, testing::HasSubstr("Spectrum &amp; &lt;axis&gt;"));
    EXPECT_THAT(svg, testing::HasSubstr("class=\"pen dash dot\""));
    EXPECT_THAT(emf, testing::HasSubstr(std::string("\xB1\x03\xB2\x03\xB3\x03", 6)));
    if (!HasProgram("pdffonts")) GTEST_SKIP() << "poppler-utils are not installed";
    WriteText(folder / "text.pdf", pdf);
    const auto path = QString::fromStdString(folder / "text.pdf");
    EXPECT_THAT(RunProgram("pdftotext", {path, "-"}), testing::HasSubstr("\xCE\xB1\xCE\xB2\xCE\xB3"));
    const std::string fonts = RunProgram("pdffonts", {path});
    EXPECT_THAT(fonts, testing::HasSubstr("LiberationSans-Bold"));
    // Columns: emb sub uni.
    EXPECT_THAT(fonts, testing::Not(testing::ContainsRegex(" no +(yes|no) +(yes|no) ")));
}

/// For the test below, which runs this program anew; also a way to get the files to look at.
TEST(Figure, WriteFiles)
{
    if (std::getenv("NMR1D_FIGURE") == nullptr) GTEST_SKIP() << "no folder asked for";
    App();
    const Folder folder;
    for (const PictureFormatRow& row : PictureFormats())
        WriteText(folder / ("figure" + std::string(row.extension)), Made(row.format));
}

TEST(Figure, ScaleOfTheScreenAndTimeChangeNoByte)
{
    App();
    const TempFolder folder;
    std::vector<std::string> first;
    for (const char* scale : {"1", "1.25", "2", "1"}) {
        SCOPED_TRACE(scale);
        qputenv("NMR1D_FIGURE", QByteArray::fromStdString(folder.path().string()));
        RunProgram(QCoreApplication::applicationFilePath(), {"--gtest_filter=Figure.WriteFiles"}, scale);
        qunsetenv("NMR1D_FIGURE");
        std::vector<std::string> files;
        for (const PictureFormatRow& row : PictureFormats())
            files.push_back(ReadText(folder / ("figure" + std::string(row.extension))));
        if (first.empty()) first = files;
        for (std::size_t i = 0; i < files.size(); ++i) {
            EXPECT_FALSE(files[i].empty());
            EXPECT_TRUE(files[i] == first[i]) << PictureFormats()[i].extension;
        }
    }
}

} // namespace
} // namespace nmr
