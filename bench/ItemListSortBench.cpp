// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <string>

#include "base/Browser.h"
#include "base/PageSource.h"
#include "base/UserMessages.h"
#include "hotitems/ItemListCtrl.h"

namespace {

using gavelscope::hotitems::CItemListCtrl;
using gavelscope::hotitems::DateOrder;
using gavelscope::hotitems::ItemListVariant;

struct Quiet : gavelscope::base::IBrowser, gavelscope::base::IUserMessages, gavelscope::base::IPageSource {
  void OpenUrlInBrowser(std::string_view) override {}
  gavelscope::base::MessageReply Show(const gavelscope::base::UserMessage&) override {
    return gavelscope::base::MessageReply::Ok;
  }
  std::string GetPageText(std::string_view, std::stop_token) override { return {}; }
};

// A history list of `rows` items shaped like the shared history file: dates, titles, prices, bids.
void FillHistory(CItemListCtrl& list, int rows) {
  std::mt19937 random(2005);
  const auto next = [&random](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); };
  static const char* const kWords[] = {"Vintage", "Beatles", "Lamp", "Omega", "Rare", "Book", "Jug", "Boxed"};
  for (int i = 0; i < rows; ++i) {
    char date[16];
    std::snprintf(date, sizeof date, "%02d/%02d/%d", 1 + next(28), 1 + next(12), 2003 + next(3));
    auto record = std::make_shared<gavelscope::hotitems::CHotItemRecord>();
    record->SetEnding(date);
    record->SetTitle(std::string(kWords[next(8)]) + " " + kWords[next(8)] + " " + std::to_string(i));
    char price[32];
    std::snprintf(price, sizeof price, "$%d,%03d.%02d", next(5), next(1000), next(100));
    record->SetPrice(price);
    record->SetBids(next(10) == 0 ? "-" : std::to_string(next(200)));
    list.AppendRow(std::move(record));
  }
}

void SortHistory(benchmark::State& state) {
  Quiet quiet;
  CItemListCtrl list(ItemListVariant::HistoryUSA, quiet, quiet, quiet, DateOrder::DayFirst);
  FillHistory(list, static_cast<int>(state.range(1)));
  const int column = static_cast<int>(state.range(0));
  bool ascending = true;
  for (auto _ : state) {
    list.SortItems(column, ascending);
    ascending = !ascending;
  }
  state.SetItemsProcessed(state.iterations() * state.range(1));
}
BENCHMARK(SortHistory)
    ->ArgNames({"column", "rows"})
    ->Args({0, 100000})
    ->Args({1, 100000})
    ->Args({2, 100000})
    ->Args({3, 100000})
    ->Unit(benchmark::kMillisecond);

void FindNextMiss(benchmark::State& state) {
  Quiet quiet;
  CItemListCtrl list(ItemListVariant::HistoryUSA, quiet, quiet, quiet, DateOrder::DayFirst);
  FillHistory(list, static_cast<int>(state.range(0)));
  for (auto _ : state) {
    list.SetSelectionMark(-1);
    list.FindNext("no such title");
  }
}
BENCHMARK(FindNextMiss)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
