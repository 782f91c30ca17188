#include "fusion/windowsums.h"

#include <opencv2/core/hal/intrin.hpp>

#include <algorithm>

namespace {

int mirrored(int y, const cv::Mat &picture)
{
    return cv::borderInterpolate(y, picture.rows, cv::BORDER_REFLECT);
}

constexpr int never = -2;

/// columns += in - out, for four columns
void exchangeFour(double *columns, const cv::v_float32x4 &in, const cv::v_float32x4 &out)
{
    const auto low = cv::v_cvt_f64(in) - cv::v_cvt_f64(out);
    const auto high = cv::v_cvt_f64_high(in) - cv::v_cvt_f64_high(out);
    cv::v_store(columns, cv::v_load(columns) + low);
    cv::v_store(columns + 2, cv::v_load(columns + 2) + high);
}

/// The means of four windows from two pairs of sums.
cv::v_float32x4 toMeans(const cv::v_float64x2 &first, const cv::v_float64x2 &second)
{
    const auto scale = cv::v_setall_f64(windowScale);
    return cv::v_cvt_f32(first * scale, second * scale);
}

/// The running sums along two rows.
class RowPair
{
public:
    RowPair(const float *upperTerms, const float *lowerTerms)
        : upper(upperTerms)
        , lower(lowerTerms)
        , sum(cv::v_setzero_f64())
    {
        for (int x = 0; x < windowSide; ++x)
            sum += cv::v_float64x2(double(upper[x]), double(lower[x]));
    }

    /// Stores the sums of the windows that begin at four columns.
    void sumFour(int x, double *upperSums, double *lowerSums)
    {
        cv::v_float32x4 entering[2], leaving[2];
        cv::v_zip(cv::v_load(upper + x + windowSide), cv::v_load(lower + x + windowSide),
                  entering[0], entering[1]);
        cv::v_zip(cv::v_load(upper + x), cv::v_load(lower + x), leaving[0], leaving[1]);
        for (int i = 0; i < 2; ++i) {
            const auto even = sum;
            const auto odd = even + (cv::v_cvt_f64(entering[i]) - cv::v_cvt_f64(leaving[i]));
            sum = odd + (cv::v_cvt_f64_high(entering[i]) - cv::v_cvt_f64_high(leaving[i]));
            cv::v_store(upperSums + x + 2 * i, cv::v_combine_low(even, odd));
            cv::v_store(lowerSums + x + 2 * i, cv::v_combine_high(even, odd));
        }
    }

private:
    const float *upper;
    const float *lower;
    cv::v_float64x2 sum;
};

} // namespace

GuideMeans::GuideMeans(const cv::Mat &guidePicture, const cv::Mat &selectionPicture, bool inverted)
    : guide(guidePicture)
    , selection(selectionPicture)
    , inversion(inverted ? 255 : 0)
    , guideSums(guide.cols)
    , productSums(guide.cols)
    , sourceColumns(guide.cols)
    , refreshed(size_t(blocksFor(guide.cols)), never)
{
    createPadded(noGuide, {guide.cols, 1}, CV_32F);
    createPadded(noSource, {guide.cols, 1}, CV_8U);
    std::fill_n(noSource.ptr(), blocksFor(guide.cols) * blockSize, inversion);
    nothing = {noGuide.ptr<float>(), noSource.ptr()};
    for (int y = -windowRadius - 1; y < windowRadius; ++y)
        exchangeSources(mirroredRow(y), nothing);
}

GuideMeans::Row GuideMeans::mirroredRow(int y) const
{
    const int inside = mirrored(y, guide);
    return {guide.ptr<float>(inside), selection.ptr(inside)};
}

void GuideMeans::nextRow()
{
    ++row;
    rowIn = mirroredRow(row + windowRadius);
    rowOut = mirroredRow(row - windowRadius - 1);
    exchangeSources(rowIn, rowOut);
    sourceColumns.mirror();
    nextBlock = -1;
}

void GuideMeans::exchangeSources(const Row &in, const Row &out)
{
    const auto inverted = cv::v_setall_u8(inversion);
    for (int x = 0; x < guide.cols; x += 16) { // a chosen pixel is 255, that is -1
        uchar *sums = sourceColumns.data() + x;
        const auto entering = cv::v_load(in.selection + x) ^ inverted;
        const auto leaving = cv::v_load(out.selection + x) ^ inverted;
        cv::v_store(sums, cv::v_add_wrap(cv::v_sub_wrap(cv::v_load(sums), entering), leaving));
    }
}

void GuideMeans::exchangeGuides(int block, const Row &in, const Row &out)
{
    const auto inverted = cv::v_setall_s32(inversion ? -1 : 0);
    const auto chosen = [inverted](const cv::v_float32x4 &values, const uchar *pixels) {
        const auto mask = cv::v_load_expand_q(reinterpret_cast<const schar *>(pixels));
        return values & cv::v_reinterpret_as_f32(mask ^ inverted);
    };
    const int begin = block * blockSize;
    for (int x = begin; x < begin + blockSize; x += 4) {
        const auto entering = cv::v_load(in.guide + x);
        const auto leaving = cv::v_load(out.guide + x);
        exchangeFour(guideSums.columns.data() + x, entering, leaving);
        exchangeFour(productSums.columns.data() + x, chosen(entering, in.selection + x),
                     chosen(leaving, out.selection + x));
    }
}

/// Brings the guide's columns of a block to the current row. Most blocks are not asked for in most
/// rows; one that was left behind is summed anew.
void GuideMeans::refresh(int block)
{
    int &at = refreshed[size_t(block)];
    if (at == row)
        return;
    if (at == row - 1) {
        exchangeGuides(block, rowIn, rowOut);
    } else {
        std::fill_n(guideSums.columns.data() + block * blockSize, blockSize, 0.0);
        std::fill_n(productSums.columns.data() + block * blockSize, blockSize, 0.0);
        for (int y = row - windowRadius; y <= row + windowRadius; ++y)
            exchangeGuides(block, mirroredRow(y), nothing);
    }
    at = row;
}

BlockKind GuideMeans::sourceAround(int block) const
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

void GuideMeans::Sums::begin(int x)
{
    auto sum = cv::v_setzero_f64();
    for (int i = x - windowRadius; i <= x + windowRadius; ++i)
        sum += cv::v_load(columns.data() + i);
    cv::v_store(pair, sum);
}

void GuideMeans::Sums::meansFrom(int x, float *means)
{
    auto sum = cv::v_load(pair);
    const double *entering = columns.data() + x + windowRadius + 1;
    const double *leaving = columns.data() + x - windowRadius;
    const auto next = [&](int i) {
        const auto current = sum;
        sum += cv::v_load(entering + i) + cv::v_load(entering + i + 1) -
               (cv::v_load(leaving + i) + cv::v_load(leaving + i + 1));
        return current;
    };
    for (int i = 0; i < blockSize; i += 4) {
        const auto first = next(i);
        cv::v_store(means + i, toMeans(first, next(i + 2)));
    }
    cv::v_store(pair, sum);
}

void GuideMeans::mean(int block, Block &means)
{
    const int x = block * blockSize;
    const int last = blocksFor(guide.cols) - 1;
    for (int near = std::max(block - 1, 0); near <= std::min(block + 1, last); ++near)
        refresh(near);
    if (block == 0 || block >= last - 1) {
        guideSums.columns.mirror();
        productSums.columns.mirror();
    }
    if (block != nextBlock) {
        guideSums.begin(x);
        productSums.begin(x);
    }
    nextBlock = block + 1;
    guideSums.meansFrom(x, means.guide.data());
    productSums.meansFrom(x, means.product.data());

    auto counts = cv::v_setzero_u8();
    for (int i = x - windowRadius; i <= x + windowRadius; ++i)
        counts = cv::v_add_wrap(counts, cv::v_load(sourceColumns.data() + i));
    uchar count[blockSize];
    cv::v_store(count, counts);
    for (int i = 0; i < blockSize; i += 4) {
        const auto four = cv::v_reinterpret_as_s32(cv::v_load_expand_q(count + i));
        cv::v_store(means.source.data() + i,
                    toMeans(cv::v_cvt_f64(four), cv::v_cvt_f64_high(four)));
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
        for (size_t x = 0; x < columns.size(); ++x)
            columns[x] += in[x];
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

/// Four rows at a time, as two pairs: each addition waits for the one before it, those of the other
/// pair do not.
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
    RowPair first(terms[0], terms[1]), second(terms[2], terms[3]);
    for (int x = 0; x < guide.cols; x += 4) {
        first.sumFour(x, results[0], results[1]);
        second.sumFour(x, results[2], results[3]);
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
