// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "insights/Formats.h"

#include <gtest/gtest.h>

#include <cmath>

#include <nlohmann/json.hpp>

namespace gavelscope::insights {
namespace {

using RecordPtr = std::shared_ptr<const hotitems::CHotItemRecord>;

RecordPtr Item(std::string ending, std::string title, std::string price, std::string bids, std::string link) {
  auto record = std::make_shared<hotitems::CHotItemRecord>();
  record->SetEnding(ending);
  record->SetTitle(std::move(title));
  record->SetPrice(std::move(price));
  record->SetBids(std::move(bids));
  record->SetItemLink(std::move(link));
  return record;
}

// Windows-1252 text with everything CSV must quote, a pound sign and a foreign price in the UK list.
TEST(Insights, CsvQuotesWhatItMustAndLeavesAbsentValuesEmpty) {
  const std::string pound = "\xA3", poundUtf8 = "\xC2\xA3";
  const std::vector<RecordPtr> history{
      Item("01/02/2005", "Line\r\nbreak, \"quoted\" \x80", pound + "12.50", "-", "http://items.example.com/1"),
      Item("03/02/2005", "Caf\xE9 Set", "AU $3.00", "31", "http://items.example.com/2"),
      Item("04/02/2005", "Jug", "GBP 1,200.00", "", "http://items.example.co.uk/3")};
  EXPECT_EQ(CsvOf(HistoryTable(history, sites::Site::UK)),
            "date_ended,title,price_text,price,currency,bids_text,bids,site,link\r\n"
            "01/02/2005,\"Line\r\nbreak, \"\"quoted\"\" \xE2\x82\xAC\"," +
                poundUtf8 +
                "12.50,12.5,GBP,-,0,uk,http://items.example.co.uk/1\r\n"
                "03/02/2005,Caf\xC3\xA9 Set,AU $3.00,,,31,31,usa,http://items.example.co.uk/2\r\n"
                "04/02/2005,Jug,\"GBP 1,200.00\",1200,GBP,,0,uk,http://items.example.co.uk/3\r\n");
  const std::vector<auctions::AuctionListRow> auctions{
      {"Tools, Hardware", "25,487", std::make_shared<auctions::CAuctionRecord>("http://listings.example.com/T/list")},
      {"Lot \"A\"", "", nullptr}};
  EXPECT_EQ(CsvOf(AuctionsTable(auctions, sites::Site::USA)),
            "position,auction,count_text,count,link\r\n"
            "1,\"Tools, Hardware\",\"25,487\",25487,http://listings.example.com/T/list\r\n"
            "2,\"Lot \"\"A\"\"\",,,\r\n");
}

TEST(Insights, JsonKeepsColumnOrderNumbersAndNulls) {
  const std::vector<RecordPtr> rows{
      Item(" 1d 02h 03m", "Tom & \"Jerry\"", "$1,200.00", "-", "http://items.example.com/9"),
      Item("5m", "x", "C $5.00", "4", "")};
  const auto json = nlohmann::ordered_json::parse(JsonOf(QueryTable(rows, sites::Site::USA, "toys.sbqry")));
  EXPECT_EQ(json, nlohmann::ordered_json::parse(R"({"list": "query", "site": "usa", "query": "toys.sbqry", "rows": [
      {"time_left": "1d 02h 03m", "time_left_seconds": 93780, "title": "Tom & \"Jerry\"", "price_text": "$1,200.00",
       "price": 1200, "currency": "USD", "bids_text": "-", "bids": 0, "link": "http://items.example.com/9"},
      {"time_left": "5m", "time_left_seconds": 300, "title": "x", "price_text": "C $5.00", "price": null,
       "currency": null, "bids_text": "4", "bids": 4, "link": ""}]})"));
  EXPECT_EQ(JsonOf(KeywordsTable({}, sites::Site::UK)), "{\"list\": \"keywords\", \"site\": \"uk\", \"rows\": []}\n");
}

TEST(Insights, StatisticsJsonHasExactlyTheAgreedNames) {
  const ListStatistics statistics =
      Summarise(std::vector<ItemFigures>{{Money{2, Currency::GBP}, 3}, {Money{8, Currency::GBP}, 0}});
  auto json = nlohmann::json::parse(StatisticsJson(statistics));
  const nlohmann::json histogram = json["currencies"]["GBP"]["histogram"];
  json["currencies"]["GBP"].erase("histogram");
  EXPECT_EQ(json, nlohmann::json::parse(R"({"count": 2, "with_bids": 1,
      "currencies": {"GBP": {"min": 2, "q1": 3.5, "median": 5, "q3": 6.5, "max": 8, "mean": 5}},
      "bids": {"median": 1.5, "mean": 1.5, "max": 3}})"));
  ASSERT_EQ(histogram.size(), 10u);
  EXPECT_EQ(histogram[0].size(), 3u);
  EXPECT_EQ(histogram[0]["from"], 2);
  EXPECT_NEAR(histogram[0]["to"].get<double>(), 2 * std::pow(4, 0.1), 1e-12);
  EXPECT_EQ(histogram[0]["count"], 1);
  EXPECT_TRUE(
      StatisticsCsv(statistics)
          .starts_with("statistic,currency,from,to,value\r\ncount,,,,2\r\nwith_bids,,,,1\r\nbids_median,,,,1.5\r\n"));
}

}  // namespace
}  // namespace gavelscope::insights
