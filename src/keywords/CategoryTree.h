// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "base/Browser.h"
#include "base/ListControl.h"
#include "base/UserMessages.h"
#include "keywords/KeyWordRecord.h"
#include "net/NetOptions.h"
#include "sites/ListingLinks.h"

namespace gavelscope::keywords {

class CKeywordListCtrl;

// An item of a tree: 0 is no item. Handles start again from 1 after the catalogue is freed.
using TreeItem = std::uint32_t;
inline constexpr TreeItem kNoItem = 0;

// A font description with the fields of a Windows LOGFONT; an empty face name means "no font set".
struct FontDescription {
  int height = 0;
  int width = 0;
  int escapement = 0;
  int orientation = 0;
  int weight = 0;
  bool italic = false;
  bool underline = false;
  bool strikeOut = false;
  std::uint8_t charSet = 0;
  std::uint8_t outPrecision = 0;
  std::uint8_t clipPrecision = 0;
  std::uint8_t quality = 0;
  std::uint8_t pitchAndFamily = 0;
  std::string faceName;

  bool operator==(const FontDescription&) const = default;
};

// Colour references are 0x00BBGGRR; -1 means no colour set.
inline constexpr std::int32_t kNoColour = -1;
inline constexpr std::int32_t kCategoryColour = 0xFF0000;
inline constexpr std::int32_t kSearchingColour = 0x1BC28C;
inline constexpr const char* kSearchingMarker = "  -  Searching";
inline constexpr const char* kTop100ItemText = "Top 100 Keywords";

// Where an item's text holds the "  -  Searching" marker, which is drawn apart from the name; npos
// when it holds none.
std::size_t SearchingMarkerAt(std::string_view text);

FontDescription CategoryFont();
FontDescription SubCategoryFont();

struct ColorFont {
  std::int32_t color = kNoColour;
  FontDescription font;
};

// The view entries of the tree's context menu, in menu order.
inline constexpr std::array<sites::ListingView, 4> kMenuViews{sites::ListingView::Current, sites::ListingView::NewToday,
                                                              sites::ListingView::EndingToday,
                                                              sites::ListingView::GoingGone};

// The category tree of one Site, headless: the "Top 100 Keywords" item, the categories and their
// sub-categories, each with its keyword array as item data, its colour and font, and every
// operation the tree view offers. Safe to call from any thread; a keyword thread fills it while
// the window may draw it.
class CCategoryTree : public base::ObservableControl, public base::IExportableList {
 public:
  // siteFlag: 0 for the UK tree, 1 for the USA tree. The tree feeds `keywordList` and opens pages
  // through `browser`.
  CCategoryTree(int siteFlag, CKeywordListCtrl& keywordList, base::IBrowser& browser, base::IUserMessages& messages);

  int siteFlag() const { return m_siteFlag; }

  // Items.
  TreeItem InsertRootItem(const std::string& text);
  TreeItem InsertChildItem(TreeItem parent, const std::string& text);
  std::vector<TreeItem> RootItems() const;
  std::vector<TreeItem> ChildItems(TreeItem parent) const;
  TreeItem GetParentItem(TreeItem item) const;
  std::string GetItemText(TreeItem item) const;
  std::size_t ItemCount() const;
  // Replaces the item's array; the array it had is released.
  void SetItemData(TreeItem item, std::shared_ptr<const KeywordArray> array);
  std::shared_ptr<const KeywordArray> GetItemData(TreeItem item) const;
  void SelectItem(TreeItem item);
  TreeItem GetSelectedItem() const;

  // Attributes.
  void SetItemFont(TreeItem item, const FontDescription& font);
  void SetItemColor(TreeItem item, std::int32_t color);
  void SetItemBold(TreeItem item, bool bold);
  bool GetItemFont(TreeItem item, FontDescription& font) const;
  std::int32_t GetItemColor(TreeItem item) const;
  bool GetItemBold(TreeItem item) const;
  bool HasAttributes(TreeItem item) const;

  // The catalogue.
  void BuildTop100();
  void FreeCatalogue();
  void ShowKeywords(TreeItem item);
  // The keywords tab exports the Top 100 list.
  std::string ExportText() const override;
  base::Outcome Export(const std::filesystem::path& file) override;

  // User actions.
  void OnItemClicked(TreeItem item);
  // The selected item's entry-0 listing page, in the given view; nothing without keywords.
  void OpenView(sites::ListingView view);
  void OnDoubleClick() { OpenView(sites::ListingView::Current); }
  // A right click: selects and shows the hit item and tells which menu entries are enabled (a
  // category or "Top 100 Keywords" offers only the current view). No item hit: no menu.
  std::array<bool, 4> ContextMenuFor(TreeItem item);

 private:
  struct Node {
    std::string text;
    TreeItem parent = kNoItem;
    std::vector<TreeItem> children;
    std::shared_ptr<const KeywordArray> data;
    bool bold = false;
  };
  const Node* FindLocked(TreeItem item) const;
  Node* FindLocked(TreeItem item);
  TreeItem InsertLocked(TreeItem parent, const std::string& text);

  const int m_siteFlag;
  CKeywordListCtrl& m_keywordList;
  base::IBrowser& m_browser;
  base::IUserMessages& m_messages;

  mutable std::mutex m_mutex;
  std::vector<Node> m_nodes;  // handle h is m_nodes[h - 1]
  std::vector<TreeItem> m_roots;
  std::map<TreeItem, ColorFont> m_attributes;
  TreeItem m_selected = kNoItem;
};

}  // namespace gavelscope::keywords
