#pragma once

// The one Qt application of the integration tests, and the fixtures that run on it.
#include "kit/port/Platform.h"
#include "kit/qt/QtPlatform.h"
#include "kit/qt/QtWebPage.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace qttest {

// Made on first use and kept for the process: Qt allows one application, made once. The web engine
// is prepared first, since it must be before any QApplication exists.
inline void ensureApplication() {
    static int argc = 1;
    static char name[] = "integration_tests";
    static char* argv[] = {name, nullptr};
    if (QApplication::instance()) return;
    kit::qt::QtWebPage::prepareEngine();
    new QApplication(argc, argv);
}

// Tests that bring up the port themselves.
class QtApplicationTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ensureApplication(); }
};

// Tests that run with the Qt platform installed for each test; sound goes nowhere.
class QtPlatformTest : public QtApplicationTest {
protected:
    void SetUp() override {
        setenv("SDL_AUDIODRIVER", "dummy", 0);
        kit::Platform::install(std::make_unique<kit::qt::QtPlatform>(kit::UserInterfaceIdiom::Phone));
    }
    void TearDown() override { kit::Platform::uninstall(); }
};

}  // namespace qttest
