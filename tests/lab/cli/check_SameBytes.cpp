#include "lab/cli/RunFolder.h"
#include "practice/Check.h"

namespace fs = std::filesystem;

TEST_CASE("language, time zone and folder leave no trace in a result")
{
    const RunFolder bench;
    CHECK_EQ(bench.run(crossing, {"--out", "one"}).exitCode, 0);

    LabProcess abroad{
        bench.folder.path(), {{"LC_ALL", "de_DE.UTF-8"}, {"LANGUAGE", "de"}, {"TZ", "Asia/Tokyo"}}, {}};
    CHECK_EQ(abroad.run({"run", crossing, "--data=EURUSD-1m.csv", "--warmup=100", "--out=two"}).exitCode, 0);
    CHECK(bench.haveSameResult("one", "two"));

    fs::create_directory(bench.folder / "below");
    fs::create_directory(bench.folder / "scripts");
    fs::copy_file(crossing, bench.folder / "scripts/MA_Cross.js");
    const LabProcess below{bench.folder / "below", {}, {}};
    CHECK_EQ(below
                 .run({"run", "../scripts/MA_Cross.js", "--data", "../EURUSD-1m.csv", "--warmup", "100",
                     "--out", "deep/er"})
                 .exitCode,
        0);
    CHECK(bench.haveSameResult("one", "below/deep/er"));
}

TEST_CASE("a script's own texts do not follow language and time zone either")
{
    const RunFolder bench;
    bench.write("Words.js",
        "var chance = Math.random();\n"
        "function OnInit() { const day = new Date(1.0e12); Print(day.toString(), (1234.5).toLocaleString(),"
        " new Date(0).toLocaleDateString(), Date.now() > 1.7e12, chance, Math.random(), Date(), new Date(),"
        " day.toLocaleString(), day.toLocaleTimeString(), day.toTimeString(), day.getHours(), day.getDay(),"
        " day.getTimezoneOffset(), new Date(2024, 6, 1).getTime(), Date.parse('2024-07-01T00:00:00'),"
        " Date.parse('Jul 1, 2024'), [1.5, day].toLocaleString(), ['b', 'ä', 'z', 'C'].sort((a, b) =>"
        " a.localeCompare(b)), 'iI'.toLocaleUpperCase(), typeof Intl, typeof performance, Date.toString(),"
        " Date.now.toString(), Math.random.toString(), Function.prototype.toString.toString()); }\n");
    CHECK_EQ(bench.run("Words.js", {"--out", "one"}).exitCode, 0);
    CHECK(contains(bench.contentOf("one/journal.txt"), "1970"));
    for (const auto& [language, zone] : {std::pair("de_DE.UTF-8", "America/New_York"),
             std::pair("de_DE", "Asia/Kathmandu"), std::pair("tr_TR.UTF-8", "Asia/Tokyo")}) {
        const LabProcess abroad{bench.folder.path(), {{"LC_ALL", language}, {"TZ", zone}}, {}};
        CHECK_EQ(abroad.run({"run", "Words.js", "--data", "EURUSD-1m.csv", "--warmup", "100", "--out", "two"})
                     .exitCode,
            0);
        CHECK(bench.haveSameResult("one", "two"));
    }
}

TEST_CASE("simulated prices give the same files again, and another seed others")
{
    const RunFolder bench;
    const auto run = [&](const std::string& seed, const std::string& out) {
        return bench.lab
            .run({"run", crossing, "--symbol", "EURJPY", "--seed", seed, "--from", "2024-01-01", "--to",
                "2024-01-05", "--warmup", "100", "--out", out})
            .exitCode;
    };
    CHECK_EQ(run("1", "one"), 0);
    CHECK_EQ(run("1", "two"), 0);
    CHECK_EQ(run("2", "three"), 0);
    CHECK(bench.haveSameResult("one", "two"));
    CHECK(!bench.haveSameResult("one", "three"));
    CHECK(contains(bench.contentOf("one/summary.json"), "simulated"));
}

TEST_CASE("a run can be made again from what it has written down")
{
    const RunFolder bench;
    CHECK_EQ(bench.lab
                 .run({"run", crossing, "--symbol", "EURUSD", "--seed", "7", "--speed", "3.5", "--from",
                     "2024-01-01", "--to", "2024-01-05", "--warmup", "100", "--spread", "12", "--delay",
                     "250", "--timeframe", "5m", "--leverage", "30", "--balance", "5000", "--account", "plan",
                     "--set", "Fast=5", "--model", "path", "--out", "one"})
                 .exitCode,
        0);
    const auto run = bench.json("one/run.json");
    CHECK_EQ(run.value("speed", 0.0), 3.5);
    std::vector<std::string> words{"run", crossing, "--out", "two"};
    for (const std::string key : {"symbol", "seed", "speed", "from", "to", "spread", "delay", "timeframe",
             "leverage", "balance", "account", "model"}) {
        if (!run.contains(key) || run.at(key).is_null())
            continue;
        words.push_back("--" + key);
        words.push_back(run.at(key).is_string() ? run.at(key).get<std::string>() : run.at(key).dump());
    }
    words.insert(words.end(), {"--warmup", run.at("warmupWanted").dump()});
    for (const auto& [name, value] : run.at("inputs").items())
        words.insert(words.end(), {"--set", name + '=' + value.get<std::string>()});
    CHECK_EQ(bench.lab.run(words).exitCode, 0);
    CHECK(bench.haveSameResult("one", "two"));

    words.insert(words.end(), {"--speed", "1", "--out", "slower"});
    CHECK_EQ(bench.lab.run(words).exitCode, 0);
    CHECK(bench.json("slower/run.json").at("dataHash") != run.at("dataHash"));
    CHECK_EQ(bench.run(crossing, {"--out", "recorded"}).exitCode, 0);
    CHECK(bench.json("recorded/run.json").at("speed").is_null());
}

CHECK_MAIN()
