/** For tests that have an archive of their own: it may be changed, stopped and killed. */
#pragma once

#include <gtest/gtest.h>

#include <optional>

#include "tests/workbench/archive/archive_server.h"

/** Not run where there is no archive to start. */
class Own_Archive : public testing::Test {
  public:
    void SetUp() override {
        if (!Archive_Server::Is_Installed()) {
            GTEST_SKIP() << "not run: orthanc is missing";
        }
        server.emplace();
        ASSERT_TRUE(server->Is_Ready());
    }

  protected:
    std::optional<Archive_Server> server;
    Temporary_Folder source;
    Temporary_Folder cache;
};
