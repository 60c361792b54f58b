// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "query/QueryFile.h"

#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Archive.h"
#include "base/Files.h"
#include "net/NetOptions.h"
#include "query/CategoryNameObject.h"

namespace gavelscope::query {

namespace {

using base::CArchive;
using query::CCategoryNameObject;

constexpr std::uint16_t kNullTag = 0x0000;
constexpr std::uint16_t kNewClassTag = 0xFFFF;
constexpr std::uint16_t kClassTag = 0x8000;
constexpr std::uint16_t kBigObjectTag = 0x7FFF;
constexpr std::uint32_t kBigClassTag = 0x80000000;
constexpr std::size_t kMaxClassNameLength = 63;
// The settings' class record is 1 and the settings object 2, so the category class is always 3.
constexpr std::uint16_t kCategoryClassIndex = 3;
// Only a reference can make the names outgrow the file, and no writer of ours makes one. The entry
// cap alone would still let a thousand references copy a name of nearly a megabyte each; this keeps
// them to a few times what an honest file of long names holds.
constexpr std::size_t kMaxReusedNameBytes = 16 * 1024 * 1024;

void WriteClassRecord(CArchive& archive, std::uint32_t schema, std::string_view name) {
  archive.WriteWord(kNewClassTag);
  archive.WriteWord(static_cast<std::uint16_t>(schema & 0xFFFF));
  archive.WriteWord(static_cast<std::uint16_t>(name.size()));
  for (char c : name) archive.WriteByte(static_cast<std::uint8_t>(c));
}

// The loading side of the archive's object records. Class records and objects share one index
// sequence from 1; an object remembers its class so that a reference of the wrong kind fails.
class ObjectReader {
 public:
  enum class Tag { kFailed, kNull, kNew, kReference };

  explicit ObjectReader(CArchive& archive) : m_archive(archive) {}

  // Reads the tag of an object of class `expected`. kNew: the object's data follows and `index`
  // is the index it was given; kReference: `index` is an object read earlier.
  Tag ReadTag(std::string_view expected, std::size_t& index) {
    std::uint16_t word = 0;
    if (!m_archive.ReadWord(word)) return Fail("unexpected end of file");
    if (word == kNullTag) return Tag::kNull;
    if (word == kNewClassTag) return ReadNewClass(expected, index);
    if (word == kBigObjectTag) {
      std::int32_t big = 0;
      if (!m_archive.ReadInt32(big)) return Fail("unexpected end of file");
      const auto value = static_cast<std::uint32_t>(big);
      if ((value & kBigClassTag) != 0) return NewOfClass(value & ~kBigClassTag, expected, index);
      if (value == 0) return Tag::kNull;
      return Reference(value, expected, index);
    }
    if ((word & kClassTag) != 0) return NewOfClass(word & ~kClassTag, expected, index);
    return Reference(word, expected, index);
  }

  void SetObjectName(std::size_t index, std::string name) { m_entries[index].name = std::move(name); }
  const std::string& ObjectName(std::size_t index) const { return m_entries[index].name; }
  const std::string& error() const { return m_error; }

  Tag Fail(std::string reason) {
    if (m_error.empty()) m_error = std::move(reason);
    m_archive.Fail();
    return Tag::kFailed;
  }

 private:
  struct Entry {
    bool isClass = false;
    // The class's name, or for an object the name of its class.
    std::string className;
    // A category object's name, kept for references to it.
    std::string name;
  };

  Tag ReadNewClass(std::string_view expected, std::size_t& index) {
    std::uint16_t schema = 0;
    std::uint16_t length = 0;
    if (!m_archive.ReadWord(schema) || !m_archive.ReadWord(length)) return Fail("unexpected end of file");
    // Both classes are versionable, so any schema is accepted.
    if (length > kMaxClassNameLength) return Fail("class name too long");
    std::string name(length, '\0');
    for (char& c : name) {
      std::uint8_t byte = 0;
      if (!m_archive.ReadByte(byte)) return Fail("unexpected end of file");
      c = static_cast<char>(byte);
    }
    m_entries.push_back({true, name, {}});
    return NewOfClass(m_entries.size() - 1, expected, index);
  }

  Tag NewOfClass(std::size_t classIndex, std::string_view expected, std::size_t& index) {
    if (classIndex >= m_entries.size() || !m_entries[classIndex].isClass) return Fail("unknown class index");
    if (m_entries[classIndex].className != expected) {
      return Fail("unexpected class " + m_entries[classIndex].className);
    }
    m_entries.push_back({false, std::string(expected), {}});
    index = m_entries.size() - 1;
    return Tag::kNew;
  }

  Tag Reference(std::size_t objectIndex, std::string_view expected, std::size_t& index) {
    if (objectIndex >= m_entries.size() || m_entries[objectIndex].isClass) return Fail("unknown object index");
    if (m_entries[objectIndex].className != expected) {
      return Fail("unexpected class " + m_entries[objectIndex].className);
    }
    index = objectIndex;
    return Tag::kReference;
  }

  CArchive& m_archive;
  // Index 0 stands for "no object" and is never looked up.
  std::vector<Entry> m_entries{Entry{}};
  std::string m_error;
};

void ReadCategories(ObjectReader& reader, CArchive& archive, std::int32_t count, std::vector<std::string>& names) {
  // Every entry becomes a scan job, and two bytes of reference make an entry: the count bounds the
  // entries read, new and referenced alike, so it is refused before anything is read.
  if (count > net::limits::kMaxQueryCategories) {
    reader.Fail("too many categories");
    return;
  }
  std::size_t reused = 0;
  for (std::int32_t i = 0; i < count && !archive.failed(); ++i) {
    std::size_t index = 0;
    const ObjectReader::Tag tag = reader.ReadTag(CCategoryNameObject::kClassName, index);
    if (tag == ObjectReader::Tag::kNew) {
      CCategoryNameObject category;
      category.Serialize(archive);
      if (archive.failed()) {
        reader.Fail("unexpected end of file");
        return;
      }
      reader.SetObjectName(index, category.name());
      names.push_back(category.name());
    } else if (tag == ObjectReader::Tag::kReference) {
      reused += reader.ObjectName(index).size();
      if (reused > kMaxReusedNameBytes) {
        reader.Fail("too many repeated categories");
        return;
      }
      names.push_back(reader.ObjectName(index));
    }
  }
}

}  // namespace

std::string SaveQueryBytes(const CMySettings& settings) {
  CArchive archive = CArchive::ForStoring();
  WriteClassRecord(archive, CMySettings::kSchema, CMySettings::kClassName);
  CMySettings copy = settings;
  copy.Serialize(archive);
  bool first = true;
  for (const std::string& name : settings.m_categories) {
    // Every category is written in full, equal names included; only the class record is shared.
    if (first) {
      WriteClassRecord(archive, CCategoryNameObject::kSchema, CCategoryNameObject::kClassName);
      first = false;
    } else {
      archive.WriteWord(kClassTag | kCategoryClassIndex);
    }
    CCategoryNameObject category(name);
    category.Serialize(archive);
  }
  return archive.bytes();
}

bool LoadQueryBytes(std::string bytes, CMySettings& out, std::string& error) {
  CArchive archive = CArchive::ForLoading(std::move(bytes));
  ObjectReader reader(archive);
  CMySettings loaded;
  std::size_t index = 0;
  // Nothing has been read that a reference could name, so only a null needs turning away here.
  if (reader.ReadTag(CMySettings::kClassName, index) == ObjectReader::Tag::kNull) reader.Fail("no query in the file");
  if (!archive.failed()) {
    const std::int32_t count = loaded.Serialize(archive);
    if (archive.failed()) {
      reader.Fail("unexpected end of file");
    } else {
      ReadCategories(reader, archive, count, loaded.m_categories);
    }
  }
  if (archive.failed()) {
    error = reader.error().empty() ? "unreadable query" : reader.error();
    return false;
  }
  out = std::move(loaded);
  return true;
}

namespace {

base::Outcome LoadSettingsFile(const std::filesystem::path& file, CMySettings& out) {
  const base::Outcome failed{false, "Cannot Load File : " + file.string()};
  std::string bytes;
  std::string ignored;
  if (!base::ReadWholeFile(file, net::limits::kMaxQueryFileBytes, bytes, ignored)) return failed;
  if (!LoadQueryBytes(std::move(bytes), out, ignored)) return failed;
  return {true, {}};
}

// The fields of one filter group in a settings object, in the order greater, less, range.
struct GroupFields {
  std::int32_t CMySettings::*flag;
  std::array<std::int32_t CMySettings::*, 3> tests;
  std::array<std::int32_t CMySettings::*, 4> bounds;  // greater, less, from, to
  void (CMySettings::*setGreater)(std::int32_t);
  void (CMySettings::*setLess)(std::int32_t);
  void (CMySettings::*setRange)(std::int32_t, std::int32_t);
};

constexpr GroupFields kBidFields{
    &CMySettings::m_bBidFilter,
    {&CMySettings::m_bBidsGreater, &CMySettings::m_bBidsLess, &CMySettings::m_bBidsRange},
    {&CMySettings::m_nBidsGreater, &CMySettings::m_nBidsLess, &CMySettings::m_nBidsFrom, &CMySettings::m_nBidsTo},
    &CMySettings::SetBidsGreaterThan,
    &CMySettings::SetBidsLessThan,
    &CMySettings::SetBidsRange};
constexpr GroupFields kDayFields{
    &CMySettings::m_bDaysFilter,
    {&CMySettings::m_bDaysGreater, &CMySettings::m_bDaysLess, &CMySettings::m_bDaysRange},
    {&CMySettings::m_nDaysGreater, &CMySettings::m_nDaysLess, &CMySettings::m_nDaysFrom, &CMySettings::m_nDaysTo},
    &CMySettings::SetDaysGreaterThan,
    &CMySettings::SetDaysLessThan,
    &CMySettings::SetDaysRange};
constexpr GroupFields kPriceFields{
    &CMySettings::m_bPriceFilter,
    {&CMySettings::m_bPriceGreater, &CMySettings::m_bPriceLess, &CMySettings::m_bPriceRange},
    {&CMySettings::m_nPriceGreater, &CMySettings::m_nPriceLess, &CMySettings::m_nPriceFrom, &CMySettings::m_nPriceTo},
    &CMySettings::SetPriceGreaterThan,
    &CMySettings::SetPriceLessThan,
    &CMySettings::SetPriceRange};

void StoreFilter(const FilterSpec& filter, const GroupFields& fields, CMySettings& settings) {
  switch (filter.test) {
    case FilterSpec::Test::Any:
      break;
    case FilterSpec::Test::Greater:
      (settings.*fields.setGreater)(filter.greater);
      break;
    case FilterSpec::Test::Less:
      (settings.*fields.setLess)(filter.less);
      break;
    case FilterSpec::Test::Range:
      (settings.*fields.setRange)(filter.from, filter.to);
      break;
  }
}

FilterSpec ReadFilter(const CMySettings& settings, const GroupFields& fields) {
  FilterSpec filter{FilterSpec::Test::Any, settings.*fields.bounds[0], settings.*fields.bounds[1],
                    settings.*fields.bounds[2], settings.*fields.bounds[3]};
  if (settings.*fields.flag == 0) return filter;
  constexpr FilterSpec::Test kTests[] = {FilterSpec::Test::Greater, FilterSpec::Test::Less, FilterSpec::Test::Range};
  for (std::size_t t = 0; t < fields.tests.size(); ++t) {
    if (settings.*fields.tests[t] != 0) {
      filter.test = kTests[t];
      break;
    }
  }
  return filter;
}

}  // namespace

CMySettings SettingsFromQuery(const QueryDefinition& query) {
  CMySettings settings;
  settings.SetKeywords(query.keywords);
  settings.SetPageDepth(query.pageDepth);
  if (query.site == sites::Site::USA) settings.SetCountry(1);
  StoreFilter(query.bids, kBidFields, settings);
  StoreFilter(query.days, kDayFields, settings);
  StoreFilter(query.price, kPriceFields, settings);
  if (!query.ascending) settings.SetAscending(0);
  switch (query.sort) {
    case SortColumn::None:
      break;
    case SortColumn::DateEnded:
      settings.SetSortByDateEnded(1);
      break;
    case SortColumn::Title:
      settings.SetSortByTitle(1);
      break;
    case SortColumn::Price:
      settings.SetSortByPrice(1);
      break;
    case SortColumn::Bids:
      settings.SetSortByBids(1);
      break;
  }
  settings.SetCategories(query.categories);
  return settings;
}

QueryDefinition QueryFromSettings(const CMySettings& settings) {
  QueryDefinition query;
  query.site = settings.m_bInternational ? sites::Site::USA : sites::Site::UK;
  query.keywords = settings.m_strKeywords;
  query.pageDepth = settings.m_nPageDepth;
  query.categories = settings.m_categories;
  query.bids = ReadFilter(settings, kBidFields);
  query.days = ReadFilter(settings, kDayFields);
  query.price = ReadFilter(settings, kPriceFields);
  if (settings.m_bSortDateEnded) {
    query.sort = SortColumn::DateEnded;
  } else if (settings.m_bSortTitle) {
    query.sort = SortColumn::Title;
  } else if (settings.m_bSortPrice) {
    query.sort = SortColumn::Price;
  } else if (settings.m_bSortBids) {
    query.sort = SortColumn::Bids;
  }
  query.ascending = settings.m_bAscending != 0;
  return query;
}

base::Outcome SaveQueryFile(const std::filesystem::path& file, const QueryDefinition& query) {
  return base::WriteWholeFile(file, SaveQueryBytes(SettingsFromQuery(query)));
}

base::Outcome LoadQueryFile(const std::filesystem::path& file, QueryDefinition& out) {
  CMySettings settings;
  base::Outcome loaded = LoadSettingsFile(file, settings);
  if (loaded) out = QueryFromSettings(settings);
  return loaded;
}

base::Outcome DescribeQueryFile(const std::filesystem::path& file, std::string& description) {
  CMySettings settings;
  base::Outcome loaded = LoadSettingsFile(file, settings);
  if (loaded) description = DescribeSettings(settings);
  return loaded;
}

std::string DescribeSettings(const CMySettings& s) {
  const std::pair<const char*, const std::int32_t*> before[] = {
      {"m_bBidFilter", &s.m_bBidFilter},
      {"m_bDaysFilter", &s.m_bDaysFilter},
      {"m_bPriceFilter", &s.m_bPriceFilter},
      {"m_bInternational", &s.m_bInternational},
  };
  const std::pair<const char*, const std::int32_t*> after[] = {
      {"m_nPageDepth", &s.m_nPageDepth},         {"m_bBidsGreater", &s.m_bBidsGreater},
      {"m_bBidsLess", &s.m_bBidsLess},           {"m_bBidsRange", &s.m_bBidsRange},
      {"m_bPriceGreater", &s.m_bPriceGreater},   {"m_bPriceLess", &s.m_bPriceLess},
      {"m_bPriceRange", &s.m_bPriceRange},       {"m_bDaysGreater", &s.m_bDaysGreater},
      {"m_bDaysLess", &s.m_bDaysLess},           {"m_bDaysRange", &s.m_bDaysRange},
      {"m_nBidsGreater", &s.m_nBidsGreater},     {"m_nBidsLess", &s.m_nBidsLess},
      {"m_nBidsFrom", &s.m_nBidsFrom},           {"m_nBidsTo", &s.m_nBidsTo},
      {"m_nPriceGreater", &s.m_nPriceGreater},   {"m_nPriceLess", &s.m_nPriceLess},
      {"m_nPriceFrom", &s.m_nPriceFrom},         {"m_nPriceTo", &s.m_nPriceTo},
      {"m_nDaysGreater", &s.m_nDaysGreater},     {"m_nDaysLess", &s.m_nDaysLess},
      {"m_nDaysFrom", &s.m_nDaysFrom},           {"m_nDaysTo", &s.m_nDaysTo},
      {"m_bAscending", &s.m_bAscending},         {"m_bSortPrice", &s.m_bSortPrice},
      {"m_bSortBids", &s.m_bSortBids},           {"m_bSortTitle", &s.m_bSortTitle},
      {"m_bSortDateEnded", &s.m_bSortDateEnded},
  };
  std::string text;
  const auto line = [&text](const char* field, const std::int32_t* value) {
    text += std::string(field) + ": " + std::to_string(*value) + "\n";
  };
  for (const auto& [field, value] : before) line(field, value);
  text += "m_strKeywords: " + s.m_strKeywords + "\n";
  for (const auto& [field, value] : after) line(field, value);
  for (const std::string& name : s.m_categories) text += "category: " + name + "\n";
  return text;
}

}  // namespace gavelscope::query
