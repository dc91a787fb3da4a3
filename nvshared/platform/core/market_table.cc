#include "nvshared/platform/core/market_table.h"

#include <algorithm>
#include <array>

namespace dv_core_ns {
namespace {

constexpr std::array<MarketRow, 106> kMarkets = {{
    {-1, "DV_INVALID_MARKET_ID"},
    {0, "DV_MIN_MARKET_ID"},
    {1, "Xetra"},
    {2, "Eurex"},
    {3, "NYSE_Liffe"},
    {4, "UNUSED2"},
    {5, "OM"},
    {6, "CBOT"},
    {7, "CME"},
    {8, "CFFE"},
    {9, "SEHK"},
    {10, "ENxtFut"},
    {11, "ENxtOpt"},
    {12, "SYCOM"},
    {13, "NQLX"},
    {14, "DVSIM"},
    {15, "GARBAN"},
    {16, "LIFFE-EO"},
    {17, "DVX"},
    {18, "ISE"},
    {19, "INSTINET"},
    {20, "NASDAQ"},
    {21, "BtecFutures"},
    {22, "BTec"},
    {23, "Island"},
    {24, "SFE"},
    {25, "EurexUS"},
    {26, "CBOE"},
    {27, "ASX"},
    {28, "Archipelago"},
    {29, "IB"},
    {30, "Euronext"},
    {31, "DV"},
    {32, "ICE_IPE"},
    {33, "FIX"},
    {34, "FIX-A"},
    {35, "FIX-B"},
    {36, "FIX-C"},
    {37, "FIX-D"},
    {38, "FIX-E"},
    {39, "FIX-F"},
    {40, "FIX-G"},
    {41, "FIX-H"},
    {42, "FIX-I"},
    {43, "COREEX"},
    {44, "FIX-J"},
    {45, "FIX-K"},
    {46, "FIX-L"},
    {47, "FIX-M"},
    {48, "FIX-N"},
    {49, "FIX-O"},
    {50, "FIX-P"},
    {51, "FIX-Q"},
    {52, "FIX-R"},
    {53, "FIX-S"},
    {54, "FIX-T"},
    {55, "FIX-U"},
    {56, "FIX-V"},
    {57, "FIX-W"},
    {58, "FIX-X"},
    {59, "FIX-Y"},
    {60, "FIX-Z"},
    {61, "Nymex"},
    {62, "Hotspot"},
    {63, "Montreal"},
    {64, "SGX"},
    {65, "IDEM"},
    {66, "MEFF"},
    {67, "TFX"},
    {68, "TOCOM"},
    {69, "TSE"},
    {70, "HKFE"},
    {71, "OSE"},
    {72, "MEXDER"},
    {73, "KRX"},
    {74, "CCX"},
    {75, "ECX"},
    {76, "CCFE"},
    {77, "NSE"},
    {78, "UNUSED"},
    {79, "LME"},
    {80, "FXMS"},
    {81, "USFE"},
    {82, "DME"},
    {83, "EBS"},
    {84, "Legwise"},
    {85, "SSE"},
    {86, "MCX"},
    {87, "Simex"},
    {88, "AlgoSE"},
    {89, "TMX"},
    {90, "BVMF"},
    {91, "MX"},
    {92, "NYSE_Liffe_US"},
    {93, "CFE"},
    {94, "Eris_GovEx"},
    {95, "NASDAQ_OMX_EU"},
    {96, "SyntheticLB"},
    {97, "HKEx"},
    {98, "eSpeed"},
    {99, "LSE"},
    {100, "GETDirect"},
    {101, "GMEX"},
    {102, "NFX"},
    {103, "KCG"},
    {104, "SGX_OTC"},
}};

// Index 0 is 501: 500 means no spread type and has no name.
constexpr std::array<const char*, 86> kCombCodeNames = {
    "Strangle",                                  // 501
    "Straddle",                                  // 502
    "Guts",                                      // 503
    "Ladder",                                    // 504
    "Volatility Trade",                          // 505
    "Iron BFly",                                 // 506
    "Box",                                       // 507
    "Combo",                                     // 508
    "2X1 Ratio",                                 // 509
    "Misc. Call/Put Spread",                     // 510
    "Conversion/Reversal",                       // 511
    "Diag Calendar",                             // 512
    "Strad Calendar",                            // 513
    "Diag Strad Calendar",                       // 514
    "Inter-Product",                             // 515
    "Calendar",                                  // 516
    "Condor",                                    // 517
    "Butterfly",                                 // 518
    "Strip",                                     // 519
    "Pack",                                      // 520
    "Bundle",                                    // 521
    "Synthetic Conv/Rev",                        // 522
    "Call Spread vs. Put",                       // 523
    "Put Spread vs. Call",                       // 524
    "Straddle vs. Call/Put",                     // 525
    "Hedged Call/Put Spread",                    // 526
    "Hedged Straddle",                           // 527
    "Hedged Call Spread versus Put",             // 528
    "Hedged Put Spread versus Call",             // 529
    "Hedged Ladder",                             // 530
    "Hedged Combo",                              // 531
    "Vol 1x2 Ratio",                             // 532
    "Vol Calendar",                              // 533
    "Jelly Roll",                                // 534
    "Iron Condor",                               // 535
    "Option Strip",                              // 536
    "Reduced Tick Spread",                       // 537
    "Hedged Strangle",                           // 538
    "Spread",                                    // 539
    "Hedged Call/Put Diag Calendar Spread",      // 540
    "Hedged Straddle Calendar Spread",           // 541
    "Hedged Diagonal Straddle Calendar Spread",  // 542
    "Hedged Butterfly",                          // 543
    "Hedged Iron Condor",                        // 544
    "Hedged Condor",                             // 545
    "Hedged Iron Butterfly",                     // 546
    "Hedged Guts",                               // 547
    "Cabinet",                                   // 548
    "Conversion/Reversal vs. Short U/L",         // 549
    "Buy/Write",                                 // 550
    "Vertical",                                  // 551
    "Custom Market",                             // 552
    "Covered",                                   // 553
    "Horizontal",                                // 554
    "X-Mas Tree",                                // 555
    "Risk Reversal",                             // 556
    "Horizontal Straddle",                       // 557
    "Double",                                    // 558
    "Conditional Curve",                         // 559
    "Straddle Strip",                            // 560
    "3-Way",                                     // 561
    "1x2 Ratio",                                 // 562
    "1x3 Ratio",                                 // 563
    "2x3 Ratio",                                 // 564
    "Pack Butterfly",                            // 565
    "Double Butterfly",                          // 566
    "Month vs. Pack",                            // 567
    "Crack",                                     // 568
    "Hedged Vertical",                           // 569
    "Hedged Horizontal",                         // 570
    "Hedged X-Mas Tree",                         // 571
    "Hedged Strip",                              // 572
    "Hedged Risk Reversal",                      // 573
    "Hedged Horizontal Straddle",                // 574
    "Hedged Double",                             // 575
    "Hedged Conditional Curve",                  // 576
    "Hedged Straddle Strip",                     // 577
    "Hedged 3-Way",                              // 578
    "Hedged Box",                                // 579
    "Tailor Made Combinations",                  // 580
    "ICS",                                       // 581
    "Non Standard Combination",                  // 582
    "3-Way Straddle vs. Call",                   // 583
    "3-Way Straddle vs. Put",                    // 584
    "Custom Carry",                              // 585
    "Reverse Reduced Tick Calendar Spread",      // 586
};

}  // namespace

std::span<const MarketRow> MarketTable() { return kMarkets; }

const char* MarketTableName(int marketId) {
  // The table is dense from -1, so the id is the index minus one.
  if (marketId < -1 || marketId >= static_cast<int>(kMarkets.size()) - 1) {
    return nullptr;
  }
  return kMarkets[static_cast<std::size_t>(marketId + 1)].name;
}

int MarketTableId(std::string_view name) {
  auto it = std::find_if(kMarkets.begin(), kMarkets.end(),
                         [name](const MarketRow& r) { return name == r.name; });
  return it == kMarkets.end() ? -1 : it->id;
}

const char* CombCodeName(int combCode) {
  if (combCode <= COMB_CODE_NONE || combCode > COMB_CODE_LAST) return "";
  return kCombCodeNames[static_cast<std::size_t>(combCode - COMB_CODE_NONE -
                                                 1)];
}

}  // namespace dv_core_ns
