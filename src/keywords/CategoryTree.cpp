// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "keywords/CategoryTree.h"

#include <set>

#include "base/ListControl.h"
#include "keywords/KeywordListCtrl.h"

namespace gavelscope::keywords {

namespace {

FontDescription ArialBase() {
  FontDescription font;
  font.height = 17;
  font.pitchAndFamily = 0x20;
  font.faceName = "Arial";
  return font;
}

}  // namespace

std::size_t SearchingMarkerAt(std::string_view text) {
  return text.find(kSearchingMarker);
}

FontDescription CategoryFont() {
  FontDescription font = ArialBase();
  font.weight = 700;
  return font;
}

FontDescription SubCategoryFont() {
  FontDescription font = ArialBase();
  font.italic = true;
  return font;
}

CCategoryTree::CCategoryTree(int siteFlag, CKeywordListCtrl& keywordList, base::IBrowser& browser,
                             base::IUserMessages& messages)
    : m_siteFlag(siteFlag), m_keywordList(keywordList), m_browser(browser), m_messages(messages) {}

const CCategoryTree::Node* CCategoryTree::FindLocked(TreeItem item) const {
  return (item == kNoItem || item > m_nodes.size()) ? nullptr : &m_nodes[item - 1];
}

CCategoryTree::Node* CCategoryTree::FindLocked(TreeItem item) {
  return (item == kNoItem || item > m_nodes.size()) ? nullptr : &m_nodes[item - 1];
}

TreeItem CCategoryTree::InsertLocked(TreeItem parent, const std::string& text) {
  m_nodes.push_back(Node{text, parent, {}, nullptr, false});
  const auto item = static_cast<TreeItem>(m_nodes.size());
  if (parent == kNoItem) {
    m_roots.push_back(item);
  } else {
    m_nodes[parent - 1].children.push_back(item);
  }
  return item;
}

TreeItem CCategoryTree::InsertRootItem(const std::string& text) {
  TreeItem item = kNoItem;
  {
    std::lock_guard lock(m_mutex);
    item = InsertLocked(kNoItem, text);
  }
  NotifyChanged();
  return item;
}

TreeItem CCategoryTree::InsertChildItem(TreeItem parent, const std::string& text) {
  TreeItem item = kNoItem;
  {
    std::lock_guard lock(m_mutex);
    if (FindLocked(parent) == nullptr) return kNoItem;
    item = InsertLocked(parent, text);
  }
  NotifyChanged();
  return item;
}

std::vector<TreeItem> CCategoryTree::RootItems() const {
  std::lock_guard lock(m_mutex);
  return m_roots;
}

std::vector<TreeItem> CCategoryTree::ChildItems(TreeItem parent) const {
  std::lock_guard lock(m_mutex);
  const Node* node = FindLocked(parent);
  return node != nullptr ? node->children : std::vector<TreeItem>{};
}

TreeItem CCategoryTree::GetParentItem(TreeItem item) const {
  std::lock_guard lock(m_mutex);
  const Node* node = FindLocked(item);
  return node != nullptr ? node->parent : kNoItem;
}

std::string CCategoryTree::GetItemText(TreeItem item) const {
  std::lock_guard lock(m_mutex);
  const Node* node = FindLocked(item);
  return node != nullptr ? node->text : std::string();
}

std::size_t CCategoryTree::ItemCount() const {
  std::lock_guard lock(m_mutex);
  return m_nodes.size();
}

void CCategoryTree::SetItemData(TreeItem item, std::shared_ptr<const KeywordArray> array) {
  {
    std::lock_guard lock(m_mutex);
    Node* node = FindLocked(item);
    if (node == nullptr) return;
    node->data = std::move(array);
  }
  NotifyChanged();
}

std::shared_ptr<const KeywordArray> CCategoryTree::GetItemData(TreeItem item) const {
  std::lock_guard lock(m_mutex);
  const Node* node = FindLocked(item);
  return node != nullptr ? node->data : nullptr;
}

void CCategoryTree::SelectItem(TreeItem item) {
  {
    std::lock_guard lock(m_mutex);
    m_selected = FindLocked(item) != nullptr ? item : kNoItem;
  }
  NotifyChanged();
}

TreeItem CCategoryTree::GetSelectedItem() const {
  std::lock_guard lock(m_mutex);
  return m_selected;
}

void CCategoryTree::SetItemFont(TreeItem item, const FontDescription& font) {
  {
    std::lock_guard lock(m_mutex);
    m_attributes[item].font = font;
  }
  NotifyChanged();
}

void CCategoryTree::SetItemColor(TreeItem item, std::int32_t color) {
  {
    std::lock_guard lock(m_mutex);
    m_attributes[item].color = color;
  }
  NotifyChanged();
}

void CCategoryTree::SetItemBold(TreeItem item, bool bold) {
  {
    std::lock_guard lock(m_mutex);
    Node* node = FindLocked(item);
    if (node == nullptr) return;
    node->bold = bold;
  }
  NotifyChanged();
}

bool CCategoryTree::GetItemFont(TreeItem item, FontDescription& font) const {
  std::lock_guard lock(m_mutex);
  const auto entry = m_attributes.find(item);
  if (entry == m_attributes.end() || entry->second.font.faceName.empty()) return false;
  font = entry->second.font;
  return true;
}

std::int32_t CCategoryTree::GetItemColor(TreeItem item) const {
  std::lock_guard lock(m_mutex);
  const auto entry = m_attributes.find(item);
  return entry != m_attributes.end() ? entry->second.color : kNoColour;
}

bool CCategoryTree::GetItemBold(TreeItem item) const {
  std::lock_guard lock(m_mutex);
  const Node* node = FindLocked(item);
  return node != nullptr && node->bold;
}

bool CCategoryTree::HasAttributes(TreeItem item) const {
  std::lock_guard lock(m_mutex);
  return m_attributes.contains(item);
}

void CCategoryTree::BuildTop100() {
  auto top100 = std::make_shared<Top100Array>();
  {
    std::lock_guard lock(m_mutex);
    std::set<std::string> taken;
    bool walking = true;
    for (auto root = m_roots.begin(); walking && root != m_roots.end(); ++root) {
      for (TreeItem child : m_nodes[*root - 1].children) {
        const Node& sub = m_nodes[child - 1];
        if (sub.text.empty()) continue;
        // A sub-category without a keyword line ends the walk: well-formed lists give every item one.
        if (!sub.data) {
          walking = false;
          break;
        }
        if (sub.data->empty()) continue;
        const KeywordRecordPtr& top = sub.data->front();
        const std::string keyword = top->GetKeyword();
        if (keyword == kNoKnownKeywords || !taken.insert(keyword).second) continue;
        top100->push_back(top);
      }
    }
    if (!m_roots.empty()) m_nodes[m_roots.front() - 1].data = top100;
  }
  NotifyChanged();
  m_keywordList.Assign(*top100);
}

void CCategoryTree::FreeCatalogue() {
  {
    std::lock_guard lock(m_mutex);
    m_nodes.clear();
    m_roots.clear();
    // Handles of the next load repeat these; stale colours and fonts must not carry over.
    m_attributes.clear();
    m_selected = kNoItem;
  }
  NotifyChanged();
}

void CCategoryTree::ShowKeywords(TreeItem item) {
  const std::shared_ptr<const KeywordArray> array = GetItemData(item);
  if (array) m_keywordList.Assign(*array);
}

std::string CCategoryTree::ExportText() const {
  std::shared_ptr<const KeywordArray> top100;
  {
    std::lock_guard lock(m_mutex);
    if (!m_roots.empty()) top100 = m_nodes[m_roots.front() - 1].data;
  }
  std::string text = "\tTodays Top 100 Keywords\r\n\r\nPosition\t\t\tKeyword\r\n\r\n";
  if (!top100) return text;
  for (std::size_t i = 0; i < top100->size(); ++i) {
    text += std::to_string(i + 1) + "\t\t\t\t" + (*top100)[i]->GetKeyword() + "\r\n";
  }
  return text;
}

base::Outcome CCategoryTree::Export(const std::filesystem::path& file) {
  return base::ExportToFile(file, ExportText(), m_messages);
}

void CCategoryTree::OnItemClicked(TreeItem item) {
  SelectItem(item);
  ShowKeywords(GetSelectedItem());
}

void CCategoryTree::OpenView(sites::ListingView view) {
  const std::shared_ptr<const KeywordArray> array = GetItemData(GetSelectedItem());
  if (!array || array->empty()) return;
  m_browser.OpenUrlInBrowser(sites::ViewLink(array->front()->GetListingLink(), view));
}

std::array<bool, 4> CCategoryTree::ContextMenuFor(TreeItem item) {
  {
    std::lock_guard lock(m_mutex);
    if (FindLocked(item) == nullptr) return {false, false, false, false};
  }
  SelectItem(item);
  ShowKeywords(item);
  const bool subCategory = GetParentItem(item) != kNoItem;
  return {true, subCategory, subCategory, subCategory};
}

}  // namespace gavelscope::keywords
