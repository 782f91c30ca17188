#include "fusion/windowsums.h"

#include <opencv2/core/hal/intrin.hpp>

namespace {

int mirrored(int y, const cv::Mat &picture)
{
    return cv::borderInterpolate(y, picture.rows, cv::BORDER_REFLECT);
}

/// columns += in - out, for four columns
void exchangeFour(double *columns, const cv::v_float32x4 &in, const cv::v_float32x4 &out)
{
    const auto low = cv::v_cvt_f64(in) - cv::v_cvt_f64(out);
    const auto high = cv::v_cvt_f64_high(in) - cv::v_cvt_f64_high(out);
    cv::v_store(columns, cv::v_load(columns) + low);
    cv::v_store(columns + 2, cv::v_load(columns + 2) + high);
}

} // namespace

GuideSums::GuideSums(const cv::Mat &guidePicture, const cv::Mat &selectionPicture, bool inverted)
    : guide(guidePicture)
    , selection(selectionPicture)
    , inversion(inverted ? 255 : 0)
    , guideColumns(guide.cols)
    , productColumns(guide.cols)
    , sourceColumns(guide.cols)
{
    cv::Mat noGuide, noSource;
    createPadded(noGuide, {guide.cols, 1}, CV_32F);
    createPadded(noSource, {guide.cols, 1}, CV_8U);
    noSource.setTo(inversion);
    const Row nothing = {noGuide.ptr<float>(), noSource.ptr()};
    for (int y = -windowRadius - 1; y < windowRadius; ++y)
        exchange(mirroredRow(y), nothing);
}

GuideSums::Row GuideSums::mirroredRow(int y) const
{
    const int inside = mirrored(y, guide);
    return {guide.ptr<float>(inside), selection.ptr(inside)};
}

void GuideSums::nextRow()
{
    exchange(mirroredRow(row + windowRadius), mirroredRow(row - windowRadius - 1));
    guideColumns.mirror();
    productColumns.mirror();
    sourceColumns.mirror();
    ++row;
}

void GuideSums::exchange(const Row &in, const Row &out)
{
    const int end = blocksFor(guide.cols) * blockSize;
    const auto inverted = cv::v_setall_u8(inversion);
    for (int x = 0; x < end; x += 16) { // a chosen pixel is 255, that is -1
        uchar *sums = sourceColumns.data() + x;
        const auto entering = cv::v_load(in.selection + x) ^ inverted;
        const auto leaving = cv::v_load(out.selection + x) ^ inverted;
        cv::v_store(sums, cv::v_add_wrap(cv::v_sub_wrap(cv::v_load(sums), entering), leaving));
    }
    const auto invertedMask = cv::v_setall_s32(inversion ? -1 : 0);
    const auto chosen = [invertedMask](const cv::v_float32x4 &values, const uchar *pixels) {
        const auto mask = cv::v_load_expand_q(reinterpret_cast<const schar *>(pixels));
        return values & cv::v_reinterpret_as_f32(mask ^ invertedMask);
    };
    for (int x = 0; x < end; x += 4) {
        const auto entering = cv::v_load(in.guide + x);
        const auto leaving = cv::v_load(out.guide + x);
        exchangeFour(guideColumns.data() + x, entering, leaving);
        exchangeFour(productColumns.data() + x, chosen(entering, in.selection + x),
                     chosen(leaving, out.selection + x));
    }
}

BlockKind GuideSums::sourceAround(int block) const
{
    // Two loads cover the windows of all 16 pixels: 30 columns.
    const uchar *columns = sourceColumns.data() + block * blockSize;
    const auto left = cv::v_load(columns - windowRadius);
    const auto right = cv::v_load(columns + windowRadius);
    const auto all = [&](uchar count) {
        const auto wanted = cv::v_setall_u8(count);
        return cv::v_check_all((left == wanted) & (right == wanted));
    };
    return all(0) ? BlockKind::AllZero : all(windowSide) ? BlockKind::AllOne : BlockKind::Mixed;
}

void GuideSums::sum(int block, Block &sums) const
{
    const int begin = block * blockSize;
    const double *guides = guideColumns.data() + begin;
    const double *products = productColumns.data() + begin;
    const uchar *sources = sourceColumns.data() + begin;
    double guideSum = 0.0, productSum = 0.0;
    int sourceSum = 0;
    for (int i = -windowRadius; i < windowRadius; ++i) {
        guideSum += guides[i];
        productSum += products[i];
        sourceSum += sources[i];
    }
    for (int i = 0; i < blockSize; ++i) {
        sums.guide[size_t(i)] = guideSum += guides[i + windowRadius];
        sums.product[size_t(i)] = productSum += products[i + windowRadius];
        sums.source[size_t(i)] = sourceSum += sources[i + windowRadius];
        guideSum -= guides[i - windowRadius];
        productSum -= products[i - windowRadius];
        sourceSum -= sources[i - windowRadius];
    }
}

EnergySums::EnergySums(const cv::Mat &guidePicture)
    : guide(guidePicture)
    , ring(size_t(ringRows * blocksFor(guide.cols) * blockSize))
    , columns(size_t(blocksFor(guide.cols) * blockSize))
{
    squares.fill(MarginRow<float>(guide.cols));
    for (int y = -windowRadius; y < windowRadius; ++y) {
        const double *in = mirroredRow(y);
        for (int x = 0; x < guide.cols; ++x)
            columns[size_t(x)] += in[x];
    }
}

double *EnergySums::sumsOfRow(int y) { return ring.data() + size_t(y % ringRows) * columns.size(); }

/// The sums along a row; whatever rows it takes are summed first.
const double *EnergySums::mirroredRow(int y)
{
    const int inside = mirrored(y, guide);
    for (; rowsDone <= inside; rowsDone += 4)
        sumFourRows(rowsDone);
    return sumsOfRow(inside);
}

/// Four rows at a time: each addition waits for the one before it, those of other rows do not.
void EnergySums::sumFourRows(int y)
{
    std::array<const float *, 4> terms;
    std::array<double *, 4> results;
    for (int i = 0; i < 4; ++i) {
        const int inside = std::min(y + i, guide.rows - 1);
        const float *values = guide.ptr<float>(inside);
        float *square = squares[size_t(i)].data();
        for (int x = 0; x < guide.cols; x += 4)
            cv::v_store(square + x, cv::v_load(values + x) * cv::v_load(values + x));
        squares[size_t(i)].mirror();
        terms[size_t(i)] = square - windowRadius;
        results[size_t(i)] = sumsOfRow(inside);
    }
    const auto [a, b, c, d] = terms;
    const auto [ra, rb, rc, rd] = results;
    double sa = 0.0, sb = 0.0, sc = 0.0, sd = 0.0;
    for (int x = 0; x < windowSide; ++x) {
        sa += double(a[x]);
        sb += double(b[x]);
        sc += double(c[x]);
        sd += double(d[x]);
    }
    for (int x = 0; x < guide.cols; ++x) {
        ra[x] = sa;
        rb[x] = sb;
        rc[x] = sc;
        rd[x] = sd;
        sa += double(a[x + windowSide]) - double(a[x]);
        sb += double(b[x + windowSide]) - double(b[x]);
        sc += double(c[x + windowSide]) - double(c[x]);
        sd += double(d[x + windowSide]) - double(d[x]);
    }
}

void EnergySums::nextRow()
{
    rowIn = mirroredRow(row + windowRadius);
    rowOut = mirroredRow(row - windowRadius);
    ++row;
}

void EnergySums::slide(int block, std::array<double, blockSize> &sums)
{
    const int begin = block * blockSize;
    for (int x = 0; x < blockSize; x += 2) {
        double *column = columns.data() + begin + x;
        const auto sum = cv::v_load(column) + cv::v_load(rowIn + begin + x);
        cv::v_store(sums.data() + x, sum);
        cv::v_store(column, sum - cv::v_load(rowOut + begin + x));
    }
}
