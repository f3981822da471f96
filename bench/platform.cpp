// Puts the practice platform, as a process of its own, under load and prints one "name value" line a figure.
//   tavoran-bench-platform load SECONDS   feeds and REST requests side by side
//   tavoran-bench-platform restart TIMES  from the start of the process to the first price
#include "practice/server/FeedClient.h"
#include "practice/server/HttpClient.h"
#include "practice/server/ServerProcess.h"
#include "practice/storage/TemporaryFolder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <iostream>
#include <memory>
#include <sched.h>
#include <thread>
#include <unistd.h>

using Clock = std::chrono::steady_clock;
using nlohmann::json;
using std::chrono::duration;

namespace {

constexpr int feedClients = 50;
constexpr int restClients = 5;
constexpr auto restPause = std::chrono::milliseconds(10); // 100 requests a second each

void print(const char* name, double value)
{
    std::cout << name << ' ' << value << std::endl;
}

json order(const std::string& account, bool market, const std::string& comment)
{
    json body{{"accountId", account}, {"symbol", "EURUSD"}, {"lotSize", 0.01}, {"comment", comment},
        {"orderKind", market ? "MARKET" : "BUY_LIMIT"}};
    if (market)
        body["type"] = "BUY";
    else
        body["pendingPrice"] = 0.5;
    return body;
}

double cpuSeconds(pid_t pid)
{
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string text{std::istreambuf_iterator<char>(file), {}};
    text.erase(0, text.rfind(')') + 2); // the name may hold blanks
    std::istringstream fields(text);
    std::string skipped;
    for (int i = 0; i < 11; ++i)
        fields >> skipped;
    double user = 0;
    double system = 0;
    fields >> user >> system;
    return (user + system) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

/// What a terminal asks for, again and again; one order in ten requests, and its cancellation.
void askOnce(HttpClient& client, const std::string& account, int number, std::string& pending)
{
    HttpReply reply;
    if (number % 50 == 7) {
        reply = client.get("/api/candles?symbol=GBPUSD&timeframe=1m");
    } else if (number % 10 == 3) {
        reply = client.post("/api/trades/place", order(account, false, "load"));
        pending = reply.json().at("id").get<std::string>();
    } else if (number % 10 == 8) {
        reply = client.request("POST", "/api/trades/cancel/" + pending, "{}");
    } else {
        const char* lists[] = {"open", "pending", "history"};
        reply = number % 4 == 0
            ? client.get("/api/accounts")
            : client.get("/api/trades/" + std::string(lists[number % 3]) + "?accountId=" + account);
    }
    if (reply.status != 200)
        throw std::runtime_error("refused: " + reply.body);
}

void load(int seconds)
{
    const TemporaryFolder folder;
    ServerProcess server((folder / "x.db").string(), {"--speed", "2.5"}); // ten snapshots a second
    cpu_set_t core;
    CPU_ZERO(&core);
    CPU_SET(0, &core);
    ::sched_setaffinity(server.pid(), sizeof core, &core);
    HttpClient first(server.port());
    first.signIn();
    const std::string account = first.demoAccount().at("id");
    for (int i = 0; i < 20; ++i)
        first.post("/api/trades/place", order(account, true, "held"));

    std::vector<std::unique_ptr<FeedClient>> feeds;
    feeds.reserve(feedClients);
    for (int i = 0; i < feedClients; ++i)
        feeds.push_back(std::make_unique<FeedClient>(server.port(), first.token()));
    const auto start = Clock::now() + std::chrono::milliseconds(500);
    const auto end = start + std::chrono::seconds(seconds);
    std::vector<int> snapshots(feedClients, 0);
    std::vector<std::vector<double>> latencies(restClients);
    std::vector<Clock::time_point> finished(restClients);
    std::atomic<bool> failed{false};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < feeds.size(); ++i) {
        threads.emplace_back([&, i] {
            while (Clock::now() < end) {
                const bool price = feeds[i]->read().at("type") == "price_update";
                snapshots[i] += price && Clock::now() >= start ? 1 : 0;
            }
        });
    }
    for (int i = 0; i < restClients; ++i) {
        threads.emplace_back([&, i] {
            try {
                HttpClient client(server.port());
                client.setToken(first.token());
                std::string pending;
                int number = 0;
                // Counted from when a request was due, so that a slow answer delays nobody's clock.
                for (auto due = start + i * restPause / restClients; due < end; due += restPause) {
                    std::this_thread::sleep_until(due);
                    askOnce(client, account, number++, pending);
                    latencies[static_cast<std::size_t>(i)].push_back(
                        duration<double, std::milli>(Clock::now() - due).count());
                }
                finished[static_cast<std::size_t>(i)] = Clock::now();
            } catch (const std::exception& error) {
                std::cerr << error.what() << std::endl;
                failed = true;
            }
        });
    }
    std::this_thread::sleep_until(start);
    const double cpuBefore = cpuSeconds(server.pid());
    std::this_thread::sleep_until(end);
    const double cpu = cpuSeconds(server.pid()) - cpuBefore;
    for (std::thread& thread : threads)
        thread.join();
    if (failed)
        throw std::runtime_error("a request failed under load");

    std::vector<double> all;
    for (const auto& part : latencies)
        all.insert(all.end(), part.begin(), part.end());
    std::ranges::sort(all);
    const double span
        = std::max<double>(seconds, duration<double>(std::ranges::max(finished) - start).count());
    print("snapshots_a_second", static_cast<double>(std::ranges::min(snapshots)) / seconds);
    print("requests_a_second", static_cast<double>(all.size()) / span);
    print("p50_ms", all[all.size() / 2]);
    print("p99_ms", all[all.size() * 99 / 100]);
    print("core_percent", cpu / seconds * 100);
}

void restart(int times)
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    std::string token;
    {
        const ServerProcess server(database);
        HttpClient client(server.port());
        client.signIn();
        token = client.token();
        const std::string account = client.demoAccount().at("id");
        for (int i = 0; i < 200; ++i)
            client.post("/api/trades/place", order(account, i % 2 == 0, "kept"));
    }
    double worst = 0;
    for (int i = 0; i < times; ++i) {
        const auto start = Clock::now();
        const ServerProcess server(database);
        FeedClient feed(server.port(), token);
        if (feed.read().at("prices").empty())
            throw std::runtime_error("a hello without prices");
        worst = std::max(worst, duration<double>(Clock::now() - start).count());
    }
    print("restart_s", worst);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const std::string mode = argc == 3 ? argv[1] : "";
        if (mode == "load")
            load(std::stoi(argv[2]));
        else if (mode == "restart")
            restart(std::stoi(argv[2]));
        else
            throw std::runtime_error("usage: tavoran-bench-platform load|restart NUMBER");
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "tavoran-bench-platform: " << error.what() << std::endl;
        return 1;
    }
}
