#pragma once

class QNetworkAccessManager;

// The process-wide network manager for API requests, made on first use on the main thread. A request that
// receives nothing for 60 s fails as a time-out, so a server that accepts and then hangs cannot stall a load.
QNetworkAccessManager *sharedNetworkAccess();

constexpr int apiTransferTimeoutMs = 60'000;
