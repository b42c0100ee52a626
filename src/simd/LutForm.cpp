// Tables evaluated by arithmetic: deriving a table's form, checking it, the
// per-thread cache of 8-bit plans and the scopes of 16-bit plans.
#include "simd/LutForm.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

#include "simd/Lut.h"

namespace zo {
namespace simd {
namespace {

// The identity on bytes (the fourth byte of a 4-byte pixel).
constexpr LutChannelForm kIdentity8 = {254, 1, 0, 0, 0, 255, 1, true, true, true, 1.0, 1.0, 1.0, {0, 0}, {1, 1}, 0, 0};

// floor(i * F / 2^32) with F = fh * 2^16 + fl, as the lanes compute it.
inline std::uint64_t Fraction(std::uint64_t i, const LutChannelForm& f)
{
    return (i * (std::uint64_t(f.fh) << 16 | f.fl)) >> 32;
}

template <class Entry>
bool Derive(const Entry* e, std::uint32_t n, LutChannelForm& f)
{
    f = LutChannelForm{};
    const std::uint32_t limit = e[n - 1], off = e[0];
    f.limit = static_cast<std::uint16_t>(limit);
    f.off = static_cast<std::uint16_t>(off);
    f.narrow = f.fixed = true;
    if (off >= limit) {
        // Constant (if anything): the offset everywhere.
        f.fast = true;
        return off == limit;
    }
    // k: the last entry below the limit (the entries rise from entry 0).
    std::uint32_t lo = 0, hi = n - 1;
    while (hi - lo > 1) {
        const std::uint32_t mid = lo + (hi - lo) / 2;
        (e[mid] < limit ? lo : hi) = mid;
    }
    const std::uint32_t k = lo;
    f.k = static_cast<std::uint16_t>(k);
    f.delta = static_cast<std::uint16_t>(limit - e[k]);
    if (k == 0) {
        f.fast = false;  // entry 1 is the limit, the formula's entry 1 the offset
        return true;
    }
    if (e[k] < off)
        return false;
    // The slope: entries q <= k are off + floor(q * m) = off + a*q + floor(q * x),
    // x in [0, 1). below(q) = floor(q * x); x >= p/q exactly when below(q) >= p.
    const std::uint64_t a = (e[k] - off) / k;
    if (a > 65535)
        return false;
    f.a = static_cast<std::uint16_t>(a);
    auto below = [&](std::uint64_t q) { return std::int64_t(e[q]) - std::int64_t(off) - std::int64_t(a * q); };
    // Stern-Brocot search for the neighbours lo = p/q <= x < r/s among the
    // fractions of denominator at most k: every slope in [p/q, r/s) gives the
    // same floors at every q <= k. Each step takes the largest run of
    // mediants toward one side (binary search), so the sides alternate.
    std::uint64_t p = 0, q = 1, r = 1, s = 1;
    while (q + s <= k) {
        const auto atLeast = [&](std::uint64_t num, std::uint64_t den) { return below(den) >= std::int64_t(num); };
        if (atLeast(p + r, q + s)) {
            std::uint64_t t0 = 1, t1 = (k - q) / s;
            while (t0 < t1) {
                const std::uint64_t t = (t0 + t1 + 1) / 2;
                if (atLeast(p + t * r, q + t * s))
                    t0 = t;
                else
                    t1 = t - 1;
            }
            p += t0 * r;
            q += t0 * s;
        } else {
            std::uint64_t t0 = 1, t1 = (k - s) / q;
            while (t0 < t1) {
                const std::uint64_t t = (t0 + t1 + 1) / 2;
                if (!atLeast(r + t * p, s + t * q))
                    t0 = t;
                else
                    t1 = t - 1;
            }
            r += t0 * p;
            s += t0 * q;
        }
    }
    f.num[0] = static_cast<std::uint32_t>(p);
    f.den[0] = static_cast<std::uint32_t>(q);
    f.num[1] = static_cast<std::uint32_t>(r);
    f.den[1] = static_cast<std::uint32_t>(s);
    f.lower = static_cast<double>(a * q + p) / static_cast<double>(q);
    f.upper = static_cast<double>(a * s + r) / static_cast<double>(s);
    // A fixed-point fraction F / 2^32 in [p/q, r/s): 16 bits when one fits.
    const std::uint64_t f16 = (p * 65536 + q - 1) / q;
    const std::uint64_t f32 = ((p << 32) + q - 1) / q;
    if (f16 < 65536 && f16 * s < r * 65536) {
        f.fh = static_cast<std::uint16_t>(f16);
    } else if (f32 < (std::uint64_t(1) << 32) && f32 * s < (r << 32)) {
        f.fh = static_cast<std::uint16_t>(f32 >> 16);
        f.fl = static_cast<std::uint16_t>(f32);
        f.narrow = false;
    } else {
        f.fixed = f.narrow = false;
        return true;
    }
    // The fast form: a*i never wraps and the formula reaches the limit right
    // after k (it rises from there on, saturating).
    const std::uint64_t next = k + 1;
    f.fast = a * (n - 1) <= 65535 && a * next + Fraction(next, f) + off >= limit;
    return true;
}

// The inverse of p modulo q (p and q coprime, q >= 2).
std::uint64_t InverseModulo(std::uint64_t p, std::uint64_t q)
{
    std::int64_t r0 = static_cast<std::int64_t>(q), r1 = static_cast<std::int64_t>(p % q), t0 = 0, t1 = 1;
    while (r1 != 0) {
        const std::int64_t quotient = r0 / r1;
        std::int64_t t = t0 - quotient * t1;
        t0 = t1;
        t1 = t;
        t = r0 - quotient * r1;
        r0 = r1;
        r1 = t;
    }
    return static_cast<std::uint64_t>((t0 % static_cast<std::int64_t>(q) + static_cast<std::int64_t>(q)) %
                                      static_cast<std::int64_t>(q));
}

// The corrected form of a table whose fast form misses because the filter
// lifted some products to the integer they fell short of (see LutForm.h),
// taking the fraction p/q as end `which` of the search's interval; false
// when it does not apply. Still to be checked at every index.
template <class Entry>
bool Correct(const Entry* e, LutChannelForm& f, unsigned which)
{
    const std::uint64_t p = f.num[which], q = f.den[which], k = f.k, a = f.a;
    if (!f.fast || f.off != 0 || f.limit >= 32768 || p == 0 || q < 2 || q > k)
        return false;
    // The neighbours of p/q among denominators up to k: b/d below (p*d - b*q
    // = 1), r/s above (r*q - p*s = 1), each with the largest denominator.
    const std::uint64_t inverse = InverseModulo(p, q);
    std::uint64_t d = inverse, s = q - inverse;
    d += q * ((k - d) / q);
    s += q * ((k - s) / q);
    const std::uint64_t b = (p * d - 1) / q, r = (p * s + 1) / q;
    const std::uint64_t fh = (p * 65536 + q - 1) / q, fg = (b * 65536 + d - 1) / d;
    if (fh >= 65536 || fh * s >= r * 65536 || fg * q >= p * 65536)
        return false;
    // kap: x = N + floor(N * kap / 2^16) reaches the next power of two
    // exactly for the lowered multiples.
    std::uint64_t kapMin = 0, kapMax = 65535;
    for (std::uint64_t i = q; i <= k; i += q) {
        const std::uint64_t n = a * i + p * (i / q);
        if (n >= f.limit)
            break;
        std::uint64_t power = 1;
        while (power <= n)
            power <<= 1;
        const std::uint64_t need = ((power - n) * 65536 + n - 1) / n;
        if (e[i] + 1u == n)
            kapMin = std::max(kapMin, need);
        else if (e[i] == n && need > 0)
            kapMax = std::min(kapMax, need - 1);
        else
            return false;
    }
    if (kapMin > kapMax)
        return false;
    f.fh = static_cast<std::uint16_t>(fh);
    f.fg = static_cast<std::uint16_t>(fg);
    f.fl = 0;
    f.kap = static_cast<std::uint16_t>(kapMin);
    f.narrow = true;
    return true;
}

// Sets every form of a set up for the corrected plan: forms that match(form)
// as they are keep their fast form (fg = fh, kap = 0), the others take the
// corrected one that matches. False when one has neither.
template <class Entry, class Match>
bool CorrectAll(const Entry* const (&tables)[3], LutChannelForm (&forms)[3], Match match)
{
    for (unsigned c = 0; c < 3; ++c) {
        LutChannelForm& f = forms[c];
        if (!f.fast || !f.fixed || !f.narrow)
            return false;
        f.fg = f.fh;
        f.kap = 0;
        if (match(f))
            continue;
        const LutChannelForm plain = f;
        bool found = false;
        for (unsigned which = 0; which < 2 && !found; ++which) {
            f = plain;
            found = Correct(tables[c], f, which) && match(f);
        }
        if (!found)
            return false;
    }
    return true;
}

// The plan of every table of a set: general if one needs it, wide if one
// needs it; false when a table has no form or the form misses an entry.
// `fixed` false: some table has no fixed-point fraction (only the exact
// form may hold).
template <class Entry>
bool DeriveAll(const Entry* const (&tables)[3], std::uint32_t n, LutChannelForm (&forms)[3], bool& fixed,
               bool& general, bool& wide)
{
    fixed = true;
    general = wide = false;
    for (unsigned c = 0; c < 3; ++c) {
        if (!Derive(tables[c], n, forms[c]))
            return false;
        fixed &= forms[c].fixed;
        general |= !forms[c].fast;
        wide |= !forms[c].narrow;
    }
    return true;
}

// Picks for every form the first candidate multiplier for which match(form)
// holds; false when a form has none.
template <class Match>
bool ChooseScales(LutChannelForm (&forms)[3], Match match)
{
    for (LutChannelForm& f : forms) {
        double scales[6];
        const unsigned n = LutExactCandidates(f, scales);
        unsigned c = 0;
        for (; c < n; ++c) {
            f.scale = scales[c];
            if (match(f))
                break;
        }
        if (c == n)
            return false;
    }
    return true;
}

// What was derived from three byte tables, kept per thread for the last
// few sets of tables (keyed by their contents and one more number, the
// pixel size): a thread that alternates between filters, two cameras
// converted on one thread for instance, finds each one's plan again
// instead of deriving it anew on every call (7-10 us a derivation). The
// entry used last is tried first; a miss takes the slot used longest ago.
template <class Value, unsigned kSlots = 4>
class TableCache {
public:
    struct Entry {
        bool has;  // a value was derived (else the tables have none)
        Value value;
    };

    // The entry of these tables and `extra`; `found` false: a new entry,
    // its key set and nothing else (the caller derives the value).
    Entry& Find(const std::uint8_t* const (&tables)[3], unsigned extra, bool& found)
    {
        auto matches = [&](const Slot& s) {
            return s.filled && s.extra == extra && std::memcmp(s.tables[0], tables[0], 256) == 0 &&
                   std::memcmp(s.tables[1], tables[1], 256) == 0 && std::memcmp(s.tables[2], tables[2], 256) == 0;
        };
        ++mClock;
        found = true;
        if (matches(mSlots[mLast]))
            return Use(mLast);
        unsigned oldest = 0;
        for (unsigned i = 0; i < kSlots; ++i) {
            if (matches(mSlots[i]))
                return Use(i);
            if (mSlots[i].used < mSlots[oldest].used)
                oldest = i;
        }
        found = false;
        Slot& s = mSlots[oldest];
        s.filled = true;
        s.extra = extra;
        for (unsigned c = 0; c < 3; ++c)
            std::memcpy(s.tables[c], tables[c], 256);
        s.entry.has = false;
        return Use(oldest);
    }

private:
    struct Slot {
        bool filled = false;
        unsigned extra = 0;
        std::uint64_t used = 0;
        std::uint8_t tables[3][256];
        Entry entry;
    };

    Entry& Use(unsigned i)
    {
        mLast = i;
        mSlots[i].used = mClock;
        return mSlots[i].entry;
    }

    Slot mSlots[kSlots];
    unsigned mLast = 0;
    std::uint64_t mClock = 0;
};

thread_local TableCache<LutFormPlan8> tCache8;
thread_local LutForm16Scope* tScope16 = nullptr;

}  // namespace

bool DeriveLutForm(const std::uint8_t* table, std::uint32_t n, LutChannelForm& form)
{
    return Derive(table, n, form);
}

bool DeriveLutForm(const std::uint16_t* table, std::uint32_t n, LutChannelForm& form)
{
    return Derive(table, n, form);
}

std::uint16_t EvalLutForm(const LutChannelForm& f, bool general, bool wide, std::uint16_t i)
{
    std::uint32_t j = i, d = 0;
    if (general) {
        d = i > f.k ? i - f.k : 0;
        j = i - d;
    }
    std::uint32_t fraction = (j * std::uint32_t(f.fh)) >> 16;
    if (wide)
        fraction += (((j * std::uint32_t(f.fh)) & 0xFFFF) + ((j * std::uint32_t(f.fl)) >> 16)) >> 16;
    const std::uint32_t product = (j * std::uint32_t(f.a)) & 0xFFFF;
    if (general)
        return static_cast<std::uint16_t>(product + fraction + f.off + (d ? f.delta : 0));
    const std::uint32_t sum = std::min(std::min(product + fraction, 65535u) + f.off, 65535u);
    return static_cast<std::uint16_t>(std::min<std::uint32_t>(sum, f.limit));
}

std::uint16_t EvalLutExact(const LutChannelForm& f, std::uint16_t i)
{
    const std::uint32_t d = i > f.k ? i - f.k : 0, j = i - d;
    const double v = static_cast<double>(j) * f.scale + static_cast<double>(f.off);
    // Truncated to 32 bits (out of range: the lanes' "indefinite" INT_MIN),
    // then saturated to 16 bits unsigned, as the lanes pack.
    const std::int64_t t = v > -2147483649.0 && v < 2147483648.0 ? static_cast<std::int64_t>(v) : INT32_MIN;
    const std::uint32_t r = static_cast<std::uint32_t>(std::min<std::int64_t>(std::max<std::int64_t>(t, 0), 65535));
    return static_cast<std::uint16_t>(r + (d ? f.delta : 0));
}

std::uint16_t EvalLutCorrected(const LutChannelForm& f, std::uint16_t i)
{
    const std::uint32_t product = (i * std::uint32_t(f.a)) & 0xFFFF;
    auto fast = [&](std::uint32_t fraction) {
        const std::uint32_t sum = std::min(std::min(product + ((i * fraction) >> 16), 65535u) + f.off, 65535u);
        return std::min<std::uint32_t>(sum, f.limit);
    };
    const std::uint32_t h = fast(f.fh), g = fast(f.fg);
    const std::uint32_t x = (h + ((h * std::uint32_t(f.kap)) >> 16)) & 0xFFFF;
    const std::uint32_t over = (x ^ h) > h ? (x ^ h) - h : 0;
    return static_cast<std::uint16_t>(h - std::min((h - g) & 0xFFFF, over));
}

std::uint8_t EvalLutSaturating8(const LutChannelForm& f, bool corrected, std::uint8_t i)
{
    const std::uint32_t product = (i * std::uint32_t(f.a)) & 0xFFFF;
    auto sum = [&](std::uint32_t fraction) { return std::min(product + ((i * fraction) >> 16), 65535u); };
    std::uint32_t r;
    if (corrected) {
        const std::uint32_t h = sum(f.fh), g = sum(f.fg);
        const std::uint32_t x = (h + ((h * std::uint32_t(f.kap)) >> 16)) & 0xFFFF;
        const std::uint32_t over = (x ^ h) > h ? (x ^ h) - h : 0;
        r = (h - std::min((h - g) & 0xFFFF, over)) & 0xFFFF;
    } else {
        r = std::min(sum(f.fh) + f.off, 65535u);
    }
    // The pack: signed 16-bit lanes saturated to 0..255.
    const std::int32_t lane = static_cast<std::int16_t>(static_cast<std::uint16_t>(r));
    return static_cast<std::uint8_t>(lane < 0 ? 0 : lane > 255 ? 255 : lane);
}

std::uint8_t EvalLutUnit8(const LutChannelForm& f, bool corrected, std::uint8_t i)
{
    auto sum = [&](std::uint32_t fraction) { return std::min(i + ((i * fraction) >> 16), 255u); };
    const std::uint32_t h = sum(f.fh);
    if (!corrected)
        return static_cast<std::uint8_t>(h);
    const std::uint32_t x = h + ((h * std::uint32_t(f.kap)) >> 16);
    return static_cast<std::uint8_t>((x ^ h) > h ? sum(f.fg) : h);
}

std::uint8_t EvalLutScaled8(const LutScaledForm& f, std::int32_t v)
{
    // The lanes: x = 4v wraps to 16 bits (it does not for |v| < 8192), the
    // multiply-high floors (arithmetic shift), the pack saturates.
    const std::int32_t x = static_cast<std::int16_t>(static_cast<std::uint16_t>(v * 4));
    auto mulHi = [x](std::uint16_t b) { return (x * static_cast<std::int16_t>(b)) >> 16; };
    const std::int32_t h = mulHi(f.high);
    std::int32_t r = h;
    if (f.corrected) {
        const std::int32_t l = mulHi(f.cross);
        if (l > (l ^ h))
            r = mulHi(f.low);
    }
    return static_cast<std::uint8_t>(r < 0 ? 0 : r > 255 ? 255 : r);
}

bool DeriveLutScaledForm(const std::uint8_t* table, LutScaledForm& f)
{
    f = LutScaledForm{};
    if (table[0] != 0)
        return false;
    // h = floor(i * B / 2^14) >= t_i at every index from B >= ceil(t_i 2^14 / i),
    // and h <= t_i where t_i < 255 up to B <= floor(((t_i + 1) 2^14 - 1) / i).
    constexpr std::int64_t kOne = 16384;
    std::int64_t atLeast = kOne, atMost = 32767;
    for (std::int64_t i = 1; i < 256; ++i) {
        const std::int64_t t = table[i];
        atLeast = std::max(atLeast, (t * kOne + i - 1) / i);
        if (t < 255)
            atMost = std::min(atMost, ((t + 1) * kOne - 1) / i);
    }
    auto matches = [&] {
        for (std::int32_t i = 0; i < 256; ++i)
            if (EvalLutScaled8(f, i) != table[i])
                return false;
        return true;
    };
    if (atLeast > 32767 || atMost < kOne)
        return false;
    f.high = static_cast<std::uint16_t>(atLeast);
    if (atLeast <= atMost)
        return f.valid = matches();
    // Corrected: h from the least B giving h >= t, g from the greatest giving
    // g <= t; where they differ, the entry says which one l must pick, and
    // l = floor(i * cross / 2^14) picks g exactly where it reaches P, h's top
    // bit (cross <= high keeps l <= h).
    f.low = static_cast<std::uint16_t>(atMost);
    f.corrected = true;
    std::int64_t crossAtLeast = 0, crossAtMost = atLeast;
    for (std::int64_t i = 1; i < 256; ++i) {
        const std::int64_t t = table[i];
        const std::int64_t h = std::min<std::int64_t>(i * atLeast / kOne, 255);
        const std::int64_t g = std::min<std::int64_t>(i * atMost / kOne, 255);
        if (h == g)
            continue;
        const std::int64_t raw = i * atLeast / kOne;
        std::int64_t top = 1;
        while (top * 2 <= raw)
            top *= 2;
        if (g == t)
            crossAtLeast = std::max(crossAtLeast, (top * kOne + i - 1) / i);
        else if (h == t)
            crossAtMost = std::min(crossAtMost, (top * kOne - 1) / i);
        else
            return false;
    }
    if (crossAtLeast > crossAtMost)
        return false;
    f.cross = static_cast<std::uint16_t>(crossAtLeast);
    return f.valid = matches();
}

unsigned LutExactCandidates(const LutChannelForm& f, double (&scales)[6])
{
    unsigned n = 0;
    for (double base : {f.lower, f.upper})
        for (double v : {base, std::nextafter(base, -1.0), std::nextafter(base, 1e300)})
            if (std::find(scales, scales + n, v) == scales + n)
                scales[n++] = v;
    return n;
}

void FillFormPlan8(const LutChannelForm (&forms)[3], unsigned pixelBytes, bool general, bool corrected,
                   LutFormPlan8& plan)
{
    plan.pixelBytes = pixelBytes;
    plan.identity[0] = plan.identity[1] = plan.identity[2] = false;
    plan.unit[0] = plan.unit[1] = plan.unit[2] = false;
    plan.scaled[0] = plan.scaled[1] = plan.scaled[2] = LutScaledForm{};
    plan.general = general && !corrected;
    plan.corrected = corrected;
    for (unsigned phase = 0; phase < 3; ++phase)
        for (unsigned half = 0; half < 2; ++half)
            for (unsigned j = 0; j < 32; ++j) {
                // Lane j of a half: byte 16 * (j / 8) + 8 * half + j % 8.
                const unsigned byte = 16 * (j / 8) + 8 * half + j % 8;
                const unsigned position = (byte + phase) % pixelBytes;
                const LutChannelForm& f = position < 3 ? forms[position] : kIdentity8;
                std::uint16_t (&lanes)[kLutParamCount][32] = plan.lanes[phase][half];
                lanes[kLutK][j] = corrected ? (position < 3 ? f.kap : 0) : f.k;
                lanes[kLutA][j] = f.a;
                lanes[kLutFh][j] = f.fh;
                lanes[kLutFl][j] = corrected ? (position < 3 ? f.fg : f.fh) : f.fl;
                lanes[kLutOff][j] = f.off;
                lanes[kLutLimit][j] = plan.general ? f.delta : f.limit;
            }
}

void FillFormPlan16(const LutChannelForm (&forms)[3], bool general, bool wide, bool exact, bool corrected,
                    LutFormPlan16& plan)
{
    plan.identity[0] = plan.identity[1] = plan.identity[2] = false;
    plan.identityBelow[0] = plan.identityBelow[1] = plan.identityBelow[2] = 0;
    plan.general = (general || exact) && !corrected;
    plan.wide = wide && !exact && !corrected;
    plan.exact = exact;
    plan.corrected = corrected;
    // h - g <= ceil(i (fh - fg) / 2^16) below the limit, 0 from it on (g(i) >= i).
    plan.pickable = corrected;
    for (const LutChannelForm& f : forms)
        plan.pickable &= f.fg <= f.fh && std::uint32_t(f.limit) * (f.fh - f.fg) < 65536u;
    for (unsigned phase = 0; phase < 3; ++phase)
        for (unsigned j = 0; j < 32; ++j) {
            const LutChannelForm& f = forms[(j + phase) % 3];
            plan.lanes[phase][kLutK][j] = corrected ? f.kap : f.k;
            plan.lanes[phase][kLutA][j] = f.a;
            plan.lanes[phase][kLutFh][j] = f.fh;
            plan.lanes[phase][kLutFl][j] = corrected ? f.fg : f.fl;
            plan.lanes[phase][kLutOff][j] = f.off;
            plan.lanes[phase][kLutLimit][j] = plan.general ? f.delta : f.limit;
            plan.scale[phase][j] = f.scale;
            plan.offset[phase][j] = f.off;
            // Channel `phase` (lane 0 of a register starting `phase` words
            // into a pixel) in lane j.
            const LutChannelForm& c = forms[phase];
            for (unsigned q = 0; q < kLutParamCount; ++q)
                plan.channel[phase][q][j] = plan.lanes[phase][q][0];
            plan.channelScale[phase][j] = c.scale;
            plan.channelOffset[phase][j] = c.off;
        }
}

const LutFormPlan8* FormPlan8(const LutTables8& t, unsigned pixelBytes)
{
    const std::uint8_t* const tables[3] = {t.byte0, t.byte1, t.byte2};
    bool found = false;
    auto& cache = tCache8.Find(tables, pixelBytes, found);
    if (found)
        return cache.has ? &cache.value : nullptr;
    LutFormPlan8& plan = cache.value;
    LutChannelForm forms[3];
    bool fixed = false, general = false, wide = false;
    if (!DeriveAll(tables, 256, forms, fixed, general, wide))
        return nullptr;
    // The fixed-point form (on bytes always the one-multiply fraction). The
    // exact form is left to 16-bit tables: on bytes it measured no faster
    // than the scalar lookups.
    bool matches = fixed && !wide;
    for (unsigned c = 0; c < 3 && matches; ++c)
        for (unsigned i = 0; i < 256 && matches; ++i)
            matches = EvalLutForm(forms[c], general, false, static_cast<std::uint16_t>(i)) == tables[c][i];
    // Else the corrected form (multipliers just below a short fraction).
    bool corrected = false;
    if (!matches)
        corrected = matches = CorrectAll(tables, forms, [&](const LutChannelForm& f) {
            const std::uint8_t* table = tables[&f - forms];
            for (unsigned i = 0; i < 256; ++i)
                if (EvalLutCorrected(f, static_cast<std::uint16_t>(i)) != table[i])
                    return false;
            return true;
        });
    if (!matches)
        return nullptr;
    // Without the limit where every table ends at 255 (and, corrected,
    // without offsets), if that gives every entry too.
    bool saturating = !general || corrected;
    for (unsigned c = 0; c < 3 && saturating; ++c)
        saturating = forms[c].limit == 255 && (!corrected || forms[c].off == 0);
    for (unsigned c = 0; c < 3 && saturating; ++c)
        for (unsigned i = 0; i < 256 && saturating; ++i)
            saturating = EvalLutSaturating8(forms[c], corrected, static_cast<std::uint8_t>(i)) == tables[c][i];
    FillFormPlan8(forms, pixelBytes, general, corrected, plan);
    plan.saturating = saturating;
    for (unsigned c = 0; c < 3; ++c) {
        unsigned i = 0;
        while (i < 256 && tables[c][i] == i)
            ++i;
        plan.identity[c] = i == 256;
        bool unit = saturating && forms[c].a == 1 && forms[c].off == 0;
        for (i = 0; i < 256 && unit; ++i)
            unit = EvalLutUnit8(forms[c], corrected, static_cast<std::uint8_t>(i)) == tables[c][i];
        plan.unit[c] = unit;
        DeriveLutScaledForm(tables[c], plan.scaled[c]);
    }
    cache.has = true;
    return &plan;
}

bool PackedUnitFraction(const std::uint8_t* table, unsigned dropBits, std::uint16_t& fraction)
{
    if ((table[0] >> dropBits) != 0)
        return false;
    // Each index bounds the fraction from both sides: the sum i + m, with
    // m = floor(i * fraction / 2^16), must fall in the entry's bucket of
    // 2^dropBits values (or reach the top bucket, saturating past 255).
    const std::int64_t top = 255 >> dropBits;
    std::int64_t low = 0, high = 65535;
    for (std::int64_t i = 1; i < 256; ++i) {
        const std::int64_t bucket = table[i] >> dropBits;
        const std::int64_t least = (bucket << dropBits) - i;
        if (least > 0)
            low = std::max(low, (least * 65536 + i - 1) / i);
        if (bucket != top) {
            const std::int64_t most = (bucket << dropBits) + (std::int64_t(1) << dropBits) - 1 - i;
            if (most < 0)
                return false;
            high = std::min(high, ((most + 1) * 65536 - 1) / i);
        }
    }
    if (low > high)
        return false;
    LutChannelForm form{};
    form.fh = static_cast<std::uint16_t>(low);
    for (unsigned i = 0; i < 256; ++i)
        if ((EvalLutUnit8(form, false, static_cast<std::uint8_t>(i)) >> dropBits) != (table[i] >> dropBits))
            return false;
    fraction = form.fh;
    return true;
}

namespace {

thread_local TableCache<LutRgb16Forms> tCacheRgb16;

}  // namespace

const LutRgb16Forms* Rgb16Forms(const LutTables8& t)
{
    const std::uint8_t* const tables[3] = {t.byte0, t.byte1, t.byte2};
    bool found = false;
    auto& cache = tCacheRgb16.Find(tables, 0, found);
    if (found)
        return cache.has ? &cache.value : nullptr;
    cache.has = true;
    static constexpr unsigned kDropBits[3] = {3, 2, 3};
    for (unsigned c = 0; c < 3; ++c) {
        unsigned i = 0;
        while (i < 256 && tables[c][i] == i)
            ++i;
        cache.value.identity[c] = i == 256;
        cache.value.fraction[c] = 0;
        if (!cache.value.identity[c] && !PackedUnitFraction(tables[c], kDropBits[c], cache.value.fraction[c]))
            cache.has = false;
    }
    return cache.has ? &cache.value : nullptr;
}

namespace {

// Whether a plan checked at the indices up to `last` (entries from `last` on
// all equal, the table's limit) gives that entry at every index past it too.
// Each form is constant or rises past the last index it was checked at:
// general and exact forms give the limit at every index past k; fast forms
// never fall and stop at the limit (met at `last`); a corrected form keeps
// the limit once its upper fast form h is there, since r <= h and the part
// taken back (at most h - g, g rising) was 0 at `last`.
bool HoldsPast(const LutChannelForm& f, const std::uint16_t* table, std::uint32_t last, bool general, bool exact,
               bool corrected)
{
    if (table[last] != f.limit)
        return false;
    if (general || exact)
        return f.k < last;
    if (corrected) {
        LutChannelForm upper = f;
        upper.fg = upper.fh;
        upper.kap = 0;
        return EvalLutCorrected(upper, static_cast<std::uint16_t>(last)) == f.limit;
    }
    return true;
}

}  // namespace

LutForm16Scope::LutForm16Scope(const std::uint16_t* red, const std::uint16_t* green, const std::uint16_t* blue,
                               bool worth, std::uint32_t entries)
    : mTables{red, green, blue}, mValid(false), mOuter(tScope16)
{
    tScope16 = this;
    const LutPaths& paths = ActiveLutPaths();
    if (!worth || !paths.words3 || !paths.verify16 || !red || !green || !blue)
        return;
    // The indices checked: those below `entries` and `entries` itself, which
    // stands for every index past it (all 65536 where the tables disagree
    // with that).
    std::uint32_t count = entries > 0 && entries < 65535 ? entries + 1 : 65536;
    for (unsigned c = 0; c < 3 && count < 65536; ++c)
        if (mTables[c][count - 1] != mTables[c][65535])
            count = 65536;
    LutChannelForm forms[3];
    bool fixed = false, general = false, wide = false;
    if (!DeriveAll(mTables, 65536, forms, fixed, general, wide))
        return;
    bool matches = fixed;
    for (unsigned c = 0; c < 3 && matches; ++c)
        matches = paths.verify16(forms[c], general, wide, mTables[c], count);
    // Else the corrected form, else the exact one (twice as slow).
    bool corrected = false, exact = false;
    if (!matches && paths.verifyCorrected16) {
        LutChannelForm trial[3] = {forms[0], forms[1], forms[2]};
        corrected = matches = CorrectAll(mTables, trial, [&](const LutChannelForm& f) {
            return paths.verifyCorrected16(f, mTables[&f - trial], count);
        });
        if (corrected)
            std::copy(trial, trial + 3, forms);
    }
    if (!matches && paths.verifyExact16)
        exact = matches = ChooseScales(
            forms, [&](const LutChannelForm& f) { return paths.verifyExact16(f, mTables[&f - forms], count); });
    for (unsigned c = 0; c < 3 && matches && count < 65536; ++c)
        matches = HoldsPast(forms[c], mTables[c], count - 1, general, exact, corrected);
    if (!matches)
        return;
    FillFormPlan16(forms, general, wide, exact, corrected, mPlan);
    for (unsigned c = 0; c < 3; ++c) {
        std::uint32_t i = 0;
        while (i < 65536 && mTables[c][i] == i)
            ++i;
        mPlan.identity[c] = i == 65536;
        mPlan.identityBelow[c] = i;
    }
    mValid = true;
}

LutForm16Scope::~LutForm16Scope() { tScope16 = mOuter; }

const LutFormPlan16* LutForm16Scope::Plan(const std::uint16_t* red, const std::uint16_t* green,
                                          const std::uint16_t* blue) const
{
    return mValid && red == mTables[0] && green == mTables[1] && blue == mTables[2] ? &mPlan : nullptr;
}

const LutFormPlan16* ScopedFormPlan16(const std::uint16_t* red, const std::uint16_t* green,
                                      const std::uint16_t* blue)
{
    const LutForm16Scope* scope = tScope16;
    const LutFormPlan16* plan = scope ? scope->Plan(red, green, blue) : nullptr;
    // The level may only change between conversions; still, never hand a
    // plan to paths that cannot run it.
    const LutPaths& paths = ActiveLutPaths();
    return plan && paths.words3 && (!plan->exact || paths.verifyExact16) ? plan : nullptr;
}

}  // namespace simd
}  // namespace zo
