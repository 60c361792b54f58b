// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/FtpClient.h"

#include <gtest/gtest.h>

#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::net {
namespace {

using testing::ReadFileBytes;
using testing::WriteFileBytes;

// The account the sandbox's FTP server serves.
const FtpAccount kVendorAccount{"ftp.gavelscope.example", 21, "gavelscope", "h0tlist"};

class FtpClientTest : public testing::SandboxTest {
 protected:
  FtpClient Client(std::string password = "h0tlist") {
    FtpAccount account = kVendorAccount;
    account.password = std::move(password);
    return FtpClient(SandboxNetOptions(), account);
  }

  testing::TempFolder m_local;
};

TEST_F(FtpClientTest, GetsAFileByteForByte) {
  FtpClient client = Client();
  ASSERT_TRUE(client.Connect({}));
  // Binary mode: the history file's CR LF line ends and any high bytes arrive untouched.
  const std::string served = ReadFileBytes(Sandbox().ftpRoot() / "HotItemList.txt");
  ASSERT_NE(served.find("\r\n"), std::string::npos);
  const NetResult got = client.GetFile("HotItemList.txt", m_local / "HotItemList.txt", {});
  ASSERT_TRUE(got) << got.error;
  EXPECT_EQ(ReadFileBytes(m_local / "HotItemList.txt"), served);
}

TEST_F(FtpClientTest, PutsThenRemovesAFileAndReportsAMissingOneWithoutTouchingTheServer) {
  FtpClient client = Client();
  WriteFileBytes(m_local / "upload.txt", "first line\nsecond line\n");
  ASSERT_TRUE(client.PutFile(m_local / "upload.txt", "Uploaded.txt", {}));
  const std::string arrived = ReadFileBytes(Sandbox().ftpRoot() / "Uploaded.txt");
  EXPECT_NE(arrived.find("first line"), std::string::npos);
  EXPECT_NE(arrived.find("second line"), std::string::npos);
  ASSERT_TRUE(client.Remove("Uploaded.txt", {}));
  EXPECT_FALSE(std::filesystem::exists(Sandbox().ftpRoot() / "Uploaded.txt"));
  EXPECT_FALSE(client.Remove("Uploaded.txt", {}));

  EXPECT_FALSE(client.PutFile(m_local / "absent.txt", "absent.txt", {}));
  EXPECT_FALSE(std::filesystem::exists(Sandbox().ftpRoot() / "absent.txt"));
}

TEST_F(FtpClientTest, FailuresSayWhyAndAFailedOrTooLargeDownloadKeepsTheLocalCopyAndLeavesNothingBeside) {
  const NetResult refused = Client("wrong").Connect({});
  EXPECT_FALSE(refused);
  EXPECT_NE(refused.error.find("530"), std::string::npos) << refused.error;
  WriteFileBytes(m_local / "HotItemList.txt", "what we had");
  const NetResult missing = Client().GetFile("NoSuchFile.txt", m_local / "HotItemList.txt", {});
  EXPECT_FALSE(missing);
  EXPECT_NE(missing.error.find("550"), std::string::npos) << missing.error;

  NetOptions options = SandboxNetOptions();
  options.maxDownloadBytes = 1000;
  FtpClient small(options, kVendorAccount);
  const NetResult large = small.GetFile("HotItemList.txt", m_local / "HotItemList.txt", {});
  EXPECT_FALSE(large);
  EXPECT_TRUE(large.overLimit);

  EXPECT_EQ(ReadFileBytes(m_local / "HotItemList.txt"), "what we had");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_local.path()), {}), 1);
}

}  // namespace
}  // namespace gavelscope::net
