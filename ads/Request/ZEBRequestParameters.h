#pragma once

// The keys of the ad request: the map handed to the ad server's URL-building script.

// Device and application.
inline constexpr const char* kZEBParameterIPadCompatibilityMode = "ios_ipadc";
inline constexpr const char* kZEBParameterITunesMetadata = "ios_metadata";
inline constexpr const char* kZEBParameterBaseSdkVersion = "ios_base_sdk";
inline constexpr const char* kZEBParameterApplicationName = "app_name";
inline constexpr const char* kZEBParameterJailbroken = "ios_jb";
inline constexpr const char* kZEBParameterDeviceID = "isu";
inline constexpr const char* kZEBParameterDeviceModel = "platform";
inline constexpr const char* kZEBParameterDeviceSubmodel = "submodel";
inline constexpr const char* kZEBParameterLocale = "hl";
inline constexpr const char* kZEBParameterAudioOutput = "u_audio";
inline constexpr const char* kZEBParameterScreenOrientation = "u_so";
inline constexpr const char* kZEBParameterScreenDensity = "u_sd";
inline constexpr const char* kZEBParameterScreenWidth = "u_w";
inline constexpr const char* kZEBParameterScreenHeight = "u_h";
inline constexpr const char* kZEBParameterCapabilitiesBookstore = "cap_bs";

// The request itself.
inline constexpr const char* kZEBParameterSDKVersion = "js";
inline constexpr const char* kZEBParameterNetworkType = "net";
inline constexpr const char* kZEBParameterTesting = "testing";
inline constexpr const char* kZEBParameterTestMode = "adtest";
inline constexpr const char* kZEBParameterExtraParams = "extras";
inline constexpr const char* kZEBParameterGender = "cust_gender";
inline constexpr const char* kZEBParameterBirthday = "cust_age";
inline constexpr const char* kZEBParameterKeywords = "kw";
inline constexpr const char* kZEBParameterLocation = "uule";
inline constexpr const char* kZEBParameterTotalAdRequests = "preqs";

// Statistics of earlier ads.
inline constexpr const char* kZEBParameterSessionID = "session_id";
inline constexpr const char* kZEBParameterPriorClickCount = "pcc";
inline constexpr const char* kZEBParameterPriorClickString = "pai";
inline constexpr const char* kZEBParameterPriorImpressionTicketString = "pit";
inline constexpr const char* kZEBParameterPriorRequestLatency = "prl";
inline constexpr const char* kZEBParameterTimeSinceFirstRequest = "ptime";
inline constexpr const char* kZEBParameterPriorClickLatency = "pcl";
inline constexpr const char* kZEBParameterPriorClickRedirectLatency = "pcrl";
inline constexpr const char* kZEBParameterPriorPreClickLatency = "ppcl";
inline constexpr const char* kZEBParameterPriorLandingPageDuration = "plpd";
inline constexpr const char* kZEBParameterPriorLandingPageLoad = "plpl";
inline constexpr const char* kZEBParameterPriorLandingPageNavCount = "plpnc";
inline constexpr const char* kZEBParameterPriorLandingPageSSLNavCount = "plpsnc";
inline constexpr const char* kZEBParameterPriorClickBackgroundedApp = "pclb";
inline constexpr const char* kZEBParameterPriorClickBreakOut = "pcbo";
inline constexpr const char* kZEBParameterAppOpenInterstitialNoFill = "aoi_nofill";
inline constexpr const char* kZEBParameterAppOpenInterstitialTimedOut = "aoi_timedout";

// Added by the ad object.
inline constexpr const char* kZEBParameterAdSlotID = "slotname";
inline constexpr const char* kZEBParameterAdFormat = "format";
inline constexpr const char* kZEBParameterAdFrame = "ad_frame";
inline constexpr const char* kZEBParameterAdBounds = "ad_bounds";
inline constexpr const char* kZEBParameterTessarSeqNum = "seq_num";
