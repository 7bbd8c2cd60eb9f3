// Which of the cameras on the buses a grab takes, and what it is called.
#include "grab/camera_choice.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

const std::vector<InventoryCamera> kCameras = {{0, "100", "USB3", ""}, // in use
                                               {1, "101", "USB3", "Flea3 A"},
                                               {2, "102", "GigE", "Flea3 B"},
                                               {3, "103", "USB2", "Grass"}};

/// Serial number of the camera that is taken; empty = none.
std::string takenBy(const CameraChoice& choice)
{
    const auto camera = narrowed(choice, kCameras);
    return camera ? camera->serial : "";
}

TEST(CameraChoice, TheFirstThatCanBeHadAndFitsIsTaken)
{
    EXPECT_EQ(takenBy({}), "101");
    EXPECT_EQ(takenBy({"Flea3", "", 0}), "101");
    EXPECT_EQ(takenBy({"Flea3 B", "", 0}), "102");
    EXPECT_EQ(takenBy({"Grass", "", 0}), "103");
    EXPECT_EQ(takenBy({"Grasshopper", "", 0}), "");
    EXPECT_EQ(takenBy({"", "102", 0}), "102");
    EXPECT_EQ(takenBy({"", "0x66", 0}), "102");
    EXPECT_EQ(takenBy({"Grass", "102", 0}), "");
    EXPECT_EQ(takenBy({"", "100", 0}), "") << "it is in use";
}

TEST(CameraChoice, AMaskChoosesBesidesWhatFits)
{
    EXPECT_EQ(takenBy({"", "", 0b1000}), "103") << "without anything else, the mask alone";
    EXPECT_EQ(takenBy({"Grass", "", 0b0100}), "102");
    EXPECT_EQ(takenBy({"Flea3", "", 0b1000}), "101");
    EXPECT_EQ(takenBy({"", "103", 0b0100}), "102");
    EXPECT_EQ(takenBy({"", "", 0b0001}), "") << "it is in use";
}

TEST(CameraChoice, WhatIsTakenIsNoOther)
{
    const auto camera = narrowed({"Flea3", "", 0b1000}, kCameras);
    ASSERT_TRUE(camera);
    EXPECT_TRUE(isOneCamera(*camera));
    EXPECT_EQ(camera->model, "Flea3 A");
    EXPECT_EQ(camera->serial, "101");
    EXPECT_EQ(camera->busMask, 0U);
}

TEST(CameraChoice, OnlyASerialNumberWithoutAMaskIsOneCamera)
{
    EXPECT_FALSE(isOneCamera({}));
    EXPECT_FALSE(isOneCamera({"Flea3", "", 0}));
    EXPECT_FALSE(isOneCamera({"Flea3", "101", 1}));
    EXPECT_TRUE(isOneCamera({"", "101", 0}));
}

TEST(CameraChoice, ItsNameIsTheSerialNumberInDecimal)
{
    EXPECT_EQ(cameraName({"", "0x66", 0}), "Camera 102");
    EXPECT_EQ(cameraName({"Flea3", "101", 0}), "Camera 101");
    EXPECT_EQ(cameraName({"Flea3", "", 0}), "The camera");
}

TEST(CameraChoice, TheSettingsMakeOne)
{
    Settings settings;
    settings.model = "A";
    settings.serial = "5";
    settings.busMask = 3;
    const CameraChoice choice = choiceOf(settings);
    EXPECT_EQ(choice.model, "A");
    EXPECT_EQ(choice.serial, "5");
    EXPECT_EQ(choice.busMask, 3U);
}

} // namespace
} // namespace kxhost
