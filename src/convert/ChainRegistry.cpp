// The built-in chained converters: one table, in construction order.
//
// The rule behind the table. The twin of an interlaced, packed or
// left/right dual-tap type is the same ID without those bits. Where a built-in
// converter leads to the twin (the deinterlacing identity, an unpacker or a
// dual-tap recombiner), it is chained with every built-in converter out of the
// twin whose pair is not served yet (interlaced sources keep only their 8-bit
// and RGB destinations; the grayscale pairs that family leaves unregistered
// are left out). Then every converter to RGB24, those chains included, is
// followed by the planar split, even where the pair is served already: those
// chains are built but do not register, the first converter of a pair being
// the registered one.
#include "ZoGenericConverters.h"
#include "core/StaticConverters.h"

namespace {

// Attribute bits, composed with the base IDs.
constexpr std::int64_t N = ZO_PIXEL_NORMALIZED, I = ZO_PIXEL_INTERLACED, P = ZO_PIXEL_PACKED,
                       PL = ZO_PIXEL_PLANAR;
constexpr std::int64_t LR = ZO_PIXEL_TAP_DUAL_LR, LRi = ZO_PIXEL_TAP_DUAL_LR_INV,
                       LiR = ZO_PIXEL_TAP_DUAL_LINV_R, LiRi = ZO_PIXEL_TAP_DUAL_LINV_RINV;

// The first stage is the direct converter for (source, intermediate)...
constexpr int kDirect = -1;

// ...or, when firstChain is a row number, the chain built by that earlier row
// (whose pair is then (source, intermediate) as well). The second stage is
// always the direct converter for (intermediate, destination).
struct ChainRow {
    std::int64_t source;
    std::int64_t intermediate;
    std::int64_t destination;
    int firstChain;
};

constexpr ChainRow kChains[] = {
    // Interlaced twins: the deinterlacing identity, then each Bayer converter out of the twin.
    {ZO_PT_BAYER_RGB10 | I, ZO_PT_BAYER_RGB10, ZO_PT_RGB16, kDirect},                // 0
    {ZO_PT_BAYER_RGB10 | I, ZO_PT_BAYER_RGB10, ZO_PT_RGB24, kDirect},                // 1
    {ZO_PT_BAYER_RGB10 | I, ZO_PT_BAYER_RGB10, ZO_PT_BGR24, kDirect},                // 2
    {ZO_PT_BAYER_RGB10 | I, ZO_PT_BAYER_RGB10, ZO_PT_RGB32, kDirect},                // 3
    {ZO_PT_BAYER_RGB10 | I, ZO_PT_BAYER_RGB10, ZO_PT_BGR32, kDirect},                // 4
    {ZO_PT_BAYER_RGB10 | I, ZO_PT_BAYER_RGB10, ZO_PT_RGB48, kDirect},                // 5
    {ZO_PT_BAYER_RGB10 | N | I, ZO_PT_BAYER_RGB10 | N, ZO_PT_RGB16, kDirect},        // 6
    {ZO_PT_BAYER_RGB10 | N | I, ZO_PT_BAYER_RGB10 | N, ZO_PT_RGB24, kDirect},        // 7
    {ZO_PT_BAYER_RGB10 | N | I, ZO_PT_BAYER_RGB10 | N, ZO_PT_BGR24, kDirect},        // 8
    {ZO_PT_BAYER_RGB10 | N | I, ZO_PT_BAYER_RGB10 | N, ZO_PT_RGB32, kDirect},        // 9
    {ZO_PT_BAYER_RGB10 | N | I, ZO_PT_BAYER_RGB10 | N, ZO_PT_BGR32, kDirect},        // 10
    {ZO_PT_BAYER_RGB10 | N | I, ZO_PT_BAYER_RGB10 | N, ZO_PT_RGB48 | N, kDirect},    // 11
    {ZO_PT_BAYER_RGGB10 | I, ZO_PT_BAYER_RGGB10, ZO_PT_RGB16, kDirect},              // 12
    {ZO_PT_BAYER_RGGB10 | I, ZO_PT_BAYER_RGGB10, ZO_PT_RGB24, kDirect},              // 13
    {ZO_PT_BAYER_RGGB10 | I, ZO_PT_BAYER_RGGB10, ZO_PT_BGR24, kDirect},              // 14
    {ZO_PT_BAYER_RGGB10 | I, ZO_PT_BAYER_RGGB10, ZO_PT_RGB32, kDirect},              // 15
    {ZO_PT_BAYER_RGGB10 | I, ZO_PT_BAYER_RGGB10, ZO_PT_BGR32, kDirect},              // 16
    {ZO_PT_BAYER_RGGB10 | I, ZO_PT_BAYER_RGGB10, ZO_PT_RGB48, kDirect},              // 17
    {ZO_PT_BAYER_RGGB10 | N | I, ZO_PT_BAYER_RGGB10 | N, ZO_PT_RGB16, kDirect},      // 18
    {ZO_PT_BAYER_RGGB10 | N | I, ZO_PT_BAYER_RGGB10 | N, ZO_PT_RGB24, kDirect},      // 19
    {ZO_PT_BAYER_RGGB10 | N | I, ZO_PT_BAYER_RGGB10 | N, ZO_PT_BGR24, kDirect},      // 20
    {ZO_PT_BAYER_RGGB10 | N | I, ZO_PT_BAYER_RGGB10 | N, ZO_PT_RGB32, kDirect},      // 21
    {ZO_PT_BAYER_RGGB10 | N | I, ZO_PT_BAYER_RGGB10 | N, ZO_PT_BGR32, kDirect},      // 22
    {ZO_PT_BAYER_RGGB10 | N | I, ZO_PT_BAYER_RGGB10 | N, ZO_PT_RGB48 | N, kDirect},  // 23
    // Packed twins: the unpacker, then each converter out of the unpacked twin not served yet.
    {ZO_PT_GRAY10 | P, ZO_PT_GRAY10, ZO_PT_GRAY14, kDirect},                         // 24
    {ZO_PT_GRAY10 | P | LR, ZO_PT_GRAY10, ZO_PT_GRAY14, kDirect},                    // 25
    {ZO_PT_GRAY10 | P | LRi, ZO_PT_GRAY10, ZO_PT_GRAY14, kDirect},                   // 26
    {ZO_PT_GRAY10 | P | LiR, ZO_PT_GRAY10, ZO_PT_GRAY14, kDirect},                   // 27
    {ZO_PT_GRAY10 | P | LiRi, ZO_PT_GRAY10, ZO_PT_GRAY14, kDirect},                  // 28
    {ZO_PT_GRAY12 | P, ZO_PT_GRAY12, ZO_PT_GRAY14, kDirect},                         // 29
    {ZO_PT_GRAY12 | P | LR, ZO_PT_GRAY12, ZO_PT_GRAY14, kDirect},                    // 30
    {ZO_PT_GRAY12 | P | LRi, ZO_PT_GRAY12, ZO_PT_GRAY14, kDirect},                   // 31
    {ZO_PT_GRAY12 | P | LiR, ZO_PT_GRAY12, ZO_PT_GRAY14, kDirect},                   // 32
    {ZO_PT_GRAY12 | P | LiRi, ZO_PT_GRAY12, ZO_PT_GRAY14, kDirect},                  // 33
    {ZO_PT_BAYER_RGB10 | P, ZO_PT_BAYER_RGB10, ZO_PT_RGB16, kDirect},                // 34
    {ZO_PT_BAYER_RGB10 | P, ZO_PT_BAYER_RGB10, ZO_PT_RGB24, kDirect},                // 35
    {ZO_PT_BAYER_RGB10 | P, ZO_PT_BAYER_RGB10, ZO_PT_BGR24, kDirect},                // 36
    {ZO_PT_BAYER_RGB10 | P, ZO_PT_BAYER_RGB10, ZO_PT_RGB32, kDirect},                // 37
    {ZO_PT_BAYER_RGB10 | P, ZO_PT_BAYER_RGB10, ZO_PT_BGR32, kDirect},                // 38
    {ZO_PT_BAYER_RGB10 | P, ZO_PT_BAYER_RGB10, ZO_PT_RGB48, kDirect},                // 39
    {ZO_PT_BAYER_RGB10 | P | LR, ZO_PT_BAYER_RGB10, ZO_PT_RGB16, kDirect},           // 40
    {ZO_PT_BAYER_RGB10 | P | LR, ZO_PT_BAYER_RGB10, ZO_PT_RGB24, kDirect},           // 41
    {ZO_PT_BAYER_RGB10 | P | LR, ZO_PT_BAYER_RGB10, ZO_PT_BGR24, kDirect},           // 42
    {ZO_PT_BAYER_RGB10 | P | LR, ZO_PT_BAYER_RGB10, ZO_PT_RGB32, kDirect},           // 43
    {ZO_PT_BAYER_RGB10 | P | LR, ZO_PT_BAYER_RGB10, ZO_PT_BGR32, kDirect},           // 44
    {ZO_PT_BAYER_RGB10 | P | LR, ZO_PT_BAYER_RGB10, ZO_PT_RGB48, kDirect},           // 45
    {ZO_PT_BAYER_RGGB10 | P, ZO_PT_BAYER_RGGB10, ZO_PT_RGB16, kDirect},              // 46
    {ZO_PT_BAYER_RGGB10 | P, ZO_PT_BAYER_RGGB10, ZO_PT_RGB24, kDirect},              // 47
    {ZO_PT_BAYER_RGGB10 | P, ZO_PT_BAYER_RGGB10, ZO_PT_BGR24, kDirect},              // 48
    {ZO_PT_BAYER_RGGB10 | P, ZO_PT_BAYER_RGGB10, ZO_PT_RGB32, kDirect},              // 49
    {ZO_PT_BAYER_RGGB10 | P, ZO_PT_BAYER_RGGB10, ZO_PT_BGR32, kDirect},              // 50
    {ZO_PT_BAYER_RGGB10 | P, ZO_PT_BAYER_RGGB10, ZO_PT_RGB48, kDirect},              // 51
    {ZO_PT_BAYER_RGGB10 | P | LR, ZO_PT_BAYER_RGGB10, ZO_PT_RGB16, kDirect},         // 52
    {ZO_PT_BAYER_RGGB10 | P | LR, ZO_PT_BAYER_RGGB10, ZO_PT_RGB24, kDirect},         // 53
    {ZO_PT_BAYER_RGGB10 | P | LR, ZO_PT_BAYER_RGGB10, ZO_PT_BGR24, kDirect},         // 54
    {ZO_PT_BAYER_RGGB10 | P | LR, ZO_PT_BAYER_RGGB10, ZO_PT_RGB32, kDirect},         // 55
    {ZO_PT_BAYER_RGGB10 | P | LR, ZO_PT_BAYER_RGGB10, ZO_PT_BGR32, kDirect},         // 56
    {ZO_PT_BAYER_RGGB10 | P | LR, ZO_PT_BAYER_RGGB10, ZO_PT_RGB48, kDirect},         // 57
    {ZO_PT_BAYER_RGB12 | P, ZO_PT_BAYER_RGB12, ZO_PT_RGB16, kDirect},                // 58
    {ZO_PT_BAYER_RGB12 | P, ZO_PT_BAYER_RGB12, ZO_PT_RGB24, kDirect},                // 59
    {ZO_PT_BAYER_RGB12 | P, ZO_PT_BAYER_RGB12, ZO_PT_BGR24, kDirect},                // 60
    {ZO_PT_BAYER_RGB12 | P, ZO_PT_BAYER_RGB12, ZO_PT_RGB32, kDirect},                // 61
    {ZO_PT_BAYER_RGB12 | P, ZO_PT_BAYER_RGB12, ZO_PT_BGR32, kDirect},                // 62
    {ZO_PT_BAYER_RGB12 | P, ZO_PT_BAYER_RGB12, ZO_PT_RGB48, kDirect},                // 63
    {ZO_PT_BAYER_RGB12 | P | LR, ZO_PT_BAYER_RGB12, ZO_PT_RGB16, kDirect},           // 64
    {ZO_PT_BAYER_RGB12 | P | LR, ZO_PT_BAYER_RGB12, ZO_PT_RGB24, kDirect},           // 65
    {ZO_PT_BAYER_RGB12 | P | LR, ZO_PT_BAYER_RGB12, ZO_PT_BGR24, kDirect},           // 66
    {ZO_PT_BAYER_RGB12 | P | LR, ZO_PT_BAYER_RGB12, ZO_PT_RGB32, kDirect},           // 67
    {ZO_PT_BAYER_RGB12 | P | LR, ZO_PT_BAYER_RGB12, ZO_PT_BGR32, kDirect},           // 68
    {ZO_PT_BAYER_RGB12 | P | LR, ZO_PT_BAYER_RGB12, ZO_PT_RGB48, kDirect},           // 69
    {ZO_PT_BAYER_RGGB12 | P, ZO_PT_BAYER_RGGB12, ZO_PT_RGB16, kDirect},              // 70
    {ZO_PT_BAYER_RGGB12 | P, ZO_PT_BAYER_RGGB12, ZO_PT_RGB24, kDirect},              // 71
    {ZO_PT_BAYER_RGGB12 | P, ZO_PT_BAYER_RGGB12, ZO_PT_BGR24, kDirect},              // 72
    {ZO_PT_BAYER_RGGB12 | P, ZO_PT_BAYER_RGGB12, ZO_PT_RGB32, kDirect},              // 73
    {ZO_PT_BAYER_RGGB12 | P, ZO_PT_BAYER_RGGB12, ZO_PT_BGR32, kDirect},              // 74
    {ZO_PT_BAYER_RGGB12 | P, ZO_PT_BAYER_RGGB12, ZO_PT_RGB48, kDirect},              // 75
    {ZO_PT_BAYER_RGGB12 | P | LR, ZO_PT_BAYER_RGGB12, ZO_PT_RGB16, kDirect},         // 76
    {ZO_PT_BAYER_RGGB12 | P | LR, ZO_PT_BAYER_RGGB12, ZO_PT_RGB24, kDirect},         // 77
    {ZO_PT_BAYER_RGGB12 | P | LR, ZO_PT_BAYER_RGGB12, ZO_PT_BGR24, kDirect},         // 78
    {ZO_PT_BAYER_RGGB12 | P | LR, ZO_PT_BAYER_RGGB12, ZO_PT_RGB32, kDirect},         // 79
    {ZO_PT_BAYER_RGGB12 | P | LR, ZO_PT_BAYER_RGGB12, ZO_PT_BGR32, kDirect},         // 80
    {ZO_PT_BAYER_RGGB12 | P | LR, ZO_PT_BAYER_RGGB12, ZO_PT_RGB48, kDirect},         // 81
    // Dual-tap twins: the recombiner, then each converter out of the single-tap twin not served yet.
    {ZO_PT_GRAY8 | LR, ZO_PT_GRAY8, ZO_PT_RGB16, kDirect},                           // 82
    {ZO_PT_GRAY8 | LR, ZO_PT_GRAY8, ZO_PT_RGB24, kDirect},                           // 83
    {ZO_PT_GRAY8 | LR, ZO_PT_GRAY8, ZO_PT_BGR24, kDirect},                           // 84
    {ZO_PT_GRAY8 | LR, ZO_PT_GRAY8, ZO_PT_RGB32, kDirect},                           // 85
    {ZO_PT_GRAY8 | LR, ZO_PT_GRAY8, ZO_PT_BGR32, kDirect},                           // 86
    {ZO_PT_GRAY8 | LRi, ZO_PT_GRAY8, ZO_PT_RGB16, kDirect},                          // 87
    {ZO_PT_GRAY8 | LRi, ZO_PT_GRAY8, ZO_PT_RGB24, kDirect},                          // 88
    {ZO_PT_GRAY8 | LRi, ZO_PT_GRAY8, ZO_PT_BGR24, kDirect},                          // 89
    {ZO_PT_GRAY8 | LRi, ZO_PT_GRAY8, ZO_PT_RGB32, kDirect},                          // 90
    {ZO_PT_GRAY8 | LRi, ZO_PT_GRAY8, ZO_PT_BGR32, kDirect},                          // 91
    {ZO_PT_GRAY8 | LiR, ZO_PT_GRAY8, ZO_PT_RGB16, kDirect},                          // 92
    {ZO_PT_GRAY8 | LiR, ZO_PT_GRAY8, ZO_PT_RGB24, kDirect},                          // 93
    {ZO_PT_GRAY8 | LiR, ZO_PT_GRAY8, ZO_PT_BGR24, kDirect},                          // 94
    {ZO_PT_GRAY8 | LiR, ZO_PT_GRAY8, ZO_PT_RGB32, kDirect},                          // 95
    {ZO_PT_GRAY8 | LiR, ZO_PT_GRAY8, ZO_PT_BGR32, kDirect},                          // 96
    {ZO_PT_GRAY8 | LiRi, ZO_PT_GRAY8, ZO_PT_RGB16, kDirect},                         // 97
    {ZO_PT_GRAY8 | LiRi, ZO_PT_GRAY8, ZO_PT_RGB24, kDirect},                         // 98
    {ZO_PT_GRAY8 | LiRi, ZO_PT_GRAY8, ZO_PT_BGR24, kDirect},                         // 99
    {ZO_PT_GRAY8 | LiRi, ZO_PT_GRAY8, ZO_PT_RGB32, kDirect},                         // 100
    {ZO_PT_GRAY8 | LiRi, ZO_PT_GRAY8, ZO_PT_BGR32, kDirect},                         // 101
    {ZO_PT_BAYER_RGB8 | LR, ZO_PT_BAYER_RGB8, ZO_PT_RGB16, kDirect},                 // 102
    {ZO_PT_BAYER_RGB8 | LR, ZO_PT_BAYER_RGB8, ZO_PT_RGB24, kDirect},                 // 103
    {ZO_PT_BAYER_RGB8 | LR, ZO_PT_BAYER_RGB8, ZO_PT_BGR24, kDirect},                 // 104
    {ZO_PT_BAYER_RGB8 | LR, ZO_PT_BAYER_RGB8, ZO_PT_RGB32, kDirect},                 // 105
    {ZO_PT_BAYER_RGB8 | LR, ZO_PT_BAYER_RGB8, ZO_PT_BGR32, kDirect},                 // 106
    {ZO_PT_BAYER_RGB8 | LRi, ZO_PT_BAYER_RGB8, ZO_PT_RGB16, kDirect},                // 107
    {ZO_PT_BAYER_RGB8 | LRi, ZO_PT_BAYER_RGB8, ZO_PT_RGB24, kDirect},                // 108
    {ZO_PT_BAYER_RGB8 | LRi, ZO_PT_BAYER_RGB8, ZO_PT_BGR24, kDirect},                // 109
    {ZO_PT_BAYER_RGB8 | LRi, ZO_PT_BAYER_RGB8, ZO_PT_RGB32, kDirect},                // 110
    {ZO_PT_BAYER_RGB8 | LRi, ZO_PT_BAYER_RGB8, ZO_PT_BGR32, kDirect},                // 111
    {ZO_PT_BAYER_RGB8 | LiR, ZO_PT_BAYER_RGB8, ZO_PT_RGB16, kDirect},                // 112
    {ZO_PT_BAYER_RGB8 | LiR, ZO_PT_BAYER_RGB8, ZO_PT_RGB24, kDirect},                // 113
    {ZO_PT_BAYER_RGB8 | LiR, ZO_PT_BAYER_RGB8, ZO_PT_BGR24, kDirect},                // 114
    {ZO_PT_BAYER_RGB8 | LiR, ZO_PT_BAYER_RGB8, ZO_PT_RGB32, kDirect},                // 115
    {ZO_PT_BAYER_RGB8 | LiR, ZO_PT_BAYER_RGB8, ZO_PT_BGR32, kDirect},                // 116
    {ZO_PT_BAYER_RGB8 | LiRi, ZO_PT_BAYER_RGB8, ZO_PT_RGB16, kDirect},               // 117
    {ZO_PT_BAYER_RGB8 | LiRi, ZO_PT_BAYER_RGB8, ZO_PT_RGB24, kDirect},               // 118
    {ZO_PT_BAYER_RGB8 | LiRi, ZO_PT_BAYER_RGB8, ZO_PT_BGR24, kDirect},               // 119
    {ZO_PT_BAYER_RGB8 | LiRi, ZO_PT_BAYER_RGB8, ZO_PT_RGB32, kDirect},               // 120
    {ZO_PT_BAYER_RGB8 | LiRi, ZO_PT_BAYER_RGB8, ZO_PT_BGR32, kDirect},               // 121
    {ZO_PT_BAYER_RGGB8 | LR, ZO_PT_BAYER_RGGB8, ZO_PT_RGB16, kDirect},               // 122
    {ZO_PT_BAYER_RGGB8 | LR, ZO_PT_BAYER_RGGB8, ZO_PT_RGB24, kDirect},               // 123
    {ZO_PT_BAYER_RGGB8 | LR, ZO_PT_BAYER_RGGB8, ZO_PT_BGR24, kDirect},               // 124
    {ZO_PT_BAYER_RGGB8 | LR, ZO_PT_BAYER_RGGB8, ZO_PT_RGB32, kDirect},               // 125
    {ZO_PT_BAYER_RGGB8 | LR, ZO_PT_BAYER_RGGB8, ZO_PT_BGR32, kDirect},               // 126
    {ZO_PT_BAYER_RGGB8 | LRi, ZO_PT_BAYER_RGGB8, ZO_PT_RGB16, kDirect},              // 127
    {ZO_PT_BAYER_RGGB8 | LRi, ZO_PT_BAYER_RGGB8, ZO_PT_RGB24, kDirect},              // 128
    {ZO_PT_BAYER_RGGB8 | LRi, ZO_PT_BAYER_RGGB8, ZO_PT_BGR24, kDirect},              // 129
    {ZO_PT_BAYER_RGGB8 | LRi, ZO_PT_BAYER_RGGB8, ZO_PT_RGB32, kDirect},              // 130
    {ZO_PT_BAYER_RGGB8 | LRi, ZO_PT_BAYER_RGGB8, ZO_PT_BGR32, kDirect},              // 131
    {ZO_PT_BAYER_RGGB8 | LiR, ZO_PT_BAYER_RGGB8, ZO_PT_RGB16, kDirect},              // 132
    {ZO_PT_BAYER_RGGB8 | LiR, ZO_PT_BAYER_RGGB8, ZO_PT_RGB24, kDirect},              // 133
    {ZO_PT_BAYER_RGGB8 | LiR, ZO_PT_BAYER_RGGB8, ZO_PT_BGR24, kDirect},              // 134
    {ZO_PT_BAYER_RGGB8 | LiR, ZO_PT_BAYER_RGGB8, ZO_PT_RGB32, kDirect},              // 135
    {ZO_PT_BAYER_RGGB8 | LiR, ZO_PT_BAYER_RGGB8, ZO_PT_BGR32, kDirect},              // 136
    {ZO_PT_BAYER_RGGB8 | LiRi, ZO_PT_BAYER_RGGB8, ZO_PT_RGB16, kDirect},             // 137
    {ZO_PT_BAYER_RGGB8 | LiRi, ZO_PT_BAYER_RGGB8, ZO_PT_RGB24, kDirect},             // 138
    {ZO_PT_BAYER_RGGB8 | LiRi, ZO_PT_BAYER_RGGB8, ZO_PT_BGR24, kDirect},             // 139
    {ZO_PT_BAYER_RGGB8 | LiRi, ZO_PT_BAYER_RGGB8, ZO_PT_RGB32, kDirect},             // 140
    {ZO_PT_BAYER_RGGB8 | LiRi, ZO_PT_BAYER_RGGB8, ZO_PT_BGR32, kDirect},             // 141
    // Every converter to RGB24 followed by the planar split (those whose pair is served already do not register).
    {ZO_PT_BAYER_RGB10, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                     // 142
    {ZO_PT_BAYER_RGB10 | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                 // 143
    {ZO_PT_BAYER_RGGB10, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                    // 144
    {ZO_PT_BAYER_RGGB10 | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                // 145
    {ZO_PT_BAYER_RGB12, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                     // 146
    {ZO_PT_BAYER_RGB12 | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                 // 147
    {ZO_PT_BAYER_RGGB12, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                    // 148
    {ZO_PT_BAYER_RGGB12 | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                // 149
    {ZO_PT_BAYER_RGB8, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 150
    {ZO_PT_BAYER_RGGB8, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                     // 151
    {ZO_PT_GRAY8, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                           // 152
    {ZO_PT_GRAY8 | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                       // 153
    {ZO_PT_GRAY10, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                          // 154
    {ZO_PT_GRAY10 | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 155
    {ZO_PT_GRAY10 | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 156
    {ZO_PT_GRAY10 | N | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                  // 157
    {ZO_PT_GRAY12, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                          // 158
    {ZO_PT_GRAY12 | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 159
    {ZO_PT_GRAY12 | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 160
    {ZO_PT_GRAY12 | N | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                  // 161
    {ZO_PT_GRAY14, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                          // 162
    {ZO_PT_GRAY14 | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 163
    {ZO_PT_GRAY14 | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 164
    {ZO_PT_GRAY14 | N | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                  // 165
    {ZO_PT_GRAY16, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                          // 166
    {ZO_PT_GRAY16 | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 167
    {ZO_PT_GRAY16 | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 168
    {ZO_PT_GRAY16 | N | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                  // 169
    {ZO_PT_GRAY10 | P, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 170
    {ZO_PT_GRAY10 | P | LR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                 // 171
    {ZO_PT_GRAY10 | P | LRi, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                // 172
    {ZO_PT_GRAY10 | P | LiR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                // 173
    {ZO_PT_GRAY10 | P | LiRi, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},               // 174
    {ZO_PT_GRAY12 | P, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 175
    {ZO_PT_GRAY12 | P | LR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                 // 176
    {ZO_PT_GRAY12 | P | LRi, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                // 177
    {ZO_PT_GRAY12 | P | LiR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                // 178
    {ZO_PT_GRAY12 | P | LiRi, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},               // 179
    {ZO_PT_RGB16, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                           // 180
    {ZO_PT_RGB24, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                           // 181, pair served already
    {ZO_PT_RGB24 | P, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                       // 182, pair served already
    {ZO_PT_RGB8_3, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                          // 183, pair served already
    {ZO_PT_RGB8_3 | P, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                      // 184, pair served already
    {ZO_PT_RGB32, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                           // 185
    {ZO_PT_RGB8_4, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                          // 186
    {ZO_PT_RGB48_10BITS | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                // 187
    {ZO_PT_RGB48_12BITS | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                // 188
    {ZO_PT_RGB64_10BITS | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                // 189
    {ZO_PT_RGB64_12BITS | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                // 190
    {ZO_PT_RGB48_10BITS, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                    // 191
    {ZO_PT_RGB48_12BITS, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                    // 192
    {ZO_PT_RGB64_10BITS, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                    // 193
    {ZO_PT_RGB64_12BITS, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                    // 194
    {ZO_PT_YUV8, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                            // 195
    {ZO_PT_YUV8 | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                        // 196
    {ZO_PT_YUV10 | N, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                       // 197
    {ZO_PT_YUV10 | N | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                   // 198
    {ZO_PT_YUV10, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                           // 199
    {ZO_PT_YUV10 | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                       // 200
    {ZO_PT_YUV8_444, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                        // 201
    {ZO_PT_YUV8_444 | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                    // 202
    {ZO_PT_YCRCB, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                           // 203
    {ZO_PT_YCRCB | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, kDirect},                       // 204
    // The same for the chains to RGB24 above: their first stage is that chain.
    {ZO_PT_BAYER_RGB10 | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 1},                       // 205
    {ZO_PT_BAYER_RGB10 | N | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 7},                   // 206
    {ZO_PT_BAYER_RGGB10 | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 13},                     // 207
    {ZO_PT_BAYER_RGGB10 | N | I, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 19},                 // 208
    {ZO_PT_BAYER_RGB10 | P, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 35},                      // 209
    {ZO_PT_BAYER_RGB10 | P | LR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 41},                 // 210
    {ZO_PT_BAYER_RGGB10 | P, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 47},                     // 211
    {ZO_PT_BAYER_RGGB10 | P | LR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 53},                // 212
    {ZO_PT_BAYER_RGB12 | P, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 59},                      // 213
    {ZO_PT_BAYER_RGB12 | P | LR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 65},                 // 214
    {ZO_PT_BAYER_RGGB12 | P, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 71},                     // 215
    {ZO_PT_BAYER_RGGB12 | P | LR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 77},                // 216
    {ZO_PT_GRAY8 | LR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 83},                           // 217
    {ZO_PT_GRAY8 | LRi, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 88},                          // 218
    {ZO_PT_GRAY8 | LiR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 93},                          // 219
    {ZO_PT_GRAY8 | LiRi, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 98},                         // 220
    {ZO_PT_BAYER_RGB8 | LR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 103},                     // 221
    {ZO_PT_BAYER_RGB8 | LRi, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 108},                    // 222
    {ZO_PT_BAYER_RGB8 | LiR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 113},                    // 223
    {ZO_PT_BAYER_RGB8 | LiRi, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 118},                   // 224
    {ZO_PT_BAYER_RGGB8 | LR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 123},                    // 225
    {ZO_PT_BAYER_RGGB8 | LRi, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 128},                   // 226
    {ZO_PT_BAYER_RGGB8 | LiR, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 133},                   // 227
    {ZO_PT_BAYER_RGGB8 | LiRi, ZO_PT_RGB24, ZO_PT_RGB24 | PL, 138},                  // 228
};

constexpr std::size_t kChainCount = sizeof(kChains) / sizeof(kChains[0]);

// A chain used as a stage is built before the row that uses it, and serves
// the pair that row expects of it.
constexpr bool ChainStagesComeFirst()
{
    for (std::size_t i = 0; i < kChainCount; ++i) {
        const ChainRow& row = kChains[i];
        if (row.firstChain == kDirect)
            continue;
        if (row.firstChain < 0 || static_cast<std::size_t>(row.firstChain) >= i)
            return false;
        const ChainRow& stage = kChains[row.firstChain];
        if (stage.source != row.source || stage.destination != row.intermediate)
            return false;
    }
    return true;
}
static_assert(kChainCount == 229, "the table has 229 chains");
static_assert(ChainStagesComeFirst(), "a chain stage must be an earlier row with the same pair");

}  // namespace

void ZoAddChainedConverters(ZoStaticConverters& store)
{
    // Every direct stage is looked up before the first chain is added, so
    // that a lookup finds the direct converter of a pair, never a chain.
    ZoPixelConverter* first[kChainCount];
    ZoPixelConverter* second[kChainCount];
    for (std::size_t i = 0; i < kChainCount; ++i) {
        const ChainRow& row = kChains[i];
        first[i] = row.firstChain == kDirect ? store.Find(row.source, row.intermediate) : nullptr;
        second[i] = store.Find(row.intermediate, row.destination);
    }
    // Then the chains, in table order. A row whose stage is missing is
    // skipped, and so is every row that uses its chain.
    ZoPixelConverter* built[kChainCount] = {};
    for (std::size_t i = 0; i < kChainCount; ++i) {
        const ChainRow& row = kChains[i];
        ZoPixelConverter* head = row.firstChain == kDirect ? first[i] : built[row.firstChain];
        if (head && second[i])
            built[i] = store.Add<ZoComplexConverter>(head, second[i]);
    }
}
