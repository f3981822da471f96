#include "lab/cli/PlanFile.h"

#include "lab/core/output/Texts.h"
#include "lab/core/study/Grid.h"
#include "lab/core/study/StudyError.h"
#include "practice/core/FileContent.h"
#include "practice/core/market/HashRandom.h"

#include <nlohmann/json.hpp>

namespace lab {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view ending = ".json";

fs::path folderOf(const fs::path& file)
{
    return fs::absolute(file).parent_path();
}

} // namespace

std::pair<std::size_t, std::size_t> PlanFile::span(std::uint64_t chunk) const
{
    const auto place = [this](std::uint64_t chunksBefore) {
        return static_cast<std::size_t>(chunksBefore * sets / chunks);
    };
    return {place(chunk - 1), place(chunk)};
}

std::size_t PlanFile::setsOf(std::uint64_t chunk) const
{
    const auto [first, end] = span(chunk);
    return end - first;
}

StudyIdentity PlanFile::identityOf(std::uint64_t chunk) const
{
    StudyIdentity all = identity;
    all.emplace_back("the plan", print);
    all.emplace_back("the chunk", std::to_string(chunk));
    return all;
}

std::string planText(const PlanFile& plan, const fs::path& file)
{
    using Json = nlohmann::ordered_json;
    Json data = Json::array();
    for (const fs::path& record : plan.options.data)
        data.push_back(record.is_absolute() ? record.string()
                                            : fs::proximate(fs::absolute(record), folderOf(file)).string());
    Json identity = Json::object();
    for (const auto& [name, value] : plan.identity)
        identity[name] = value;
    const Json json{{"labPlan", 1}, {"sets", plan.sets}, {"chunks", plan.chunks},
        {"arguments", plan.options.arguments}, {"data", data}, {"identity", identity},
        {"scriptName", plan.script.name.toStdString()}, {"scriptFile", plan.script.fileName.toStdString()},
        {"script", plan.script.text.toStdString()}};
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

PlanFile readPlan(const fs::path& file)
{
    const std::string content = practice::contentOr<StudyError>(file);
    PlanFile plan;
    try {
        const auto json = nlohmann::ordered_json::parse(content);
        if (json.at("labPlan") != 1)
            throw StudyError(file.string() + " is a plan of another version");
        // Another kind of number would be cut, or be none at all.
        for (const char* key : {"sets", "chunks"}) {
            if (!json.at(key).is_number_unsigned())
                throw StudyError(file.string() + " is no plan");
        }
        plan.sets = json.at("sets").get<std::uint64_t>();
        plan.chunks = json.at("chunks").get<std::uint64_t>();
        plan.options = parseOptions(json.at("arguments").get<std::vector<std::string>>());
        plan.options.data.clear();
        for (const auto& record : json.at("data"))
            plan.options.data.push_back(
                fs::proximate((folderOf(file) / record.get<std::string>()).lexically_normal()));
        for (const auto& [name, value] : json.at("identity").items())
            plan.identity.emplace_back(name, value.get<std::string>());
        const auto text
            = [&json](const char* key) { return QString::fromStdString(json.at(key).get<std::string>()); };
        plan.script = {text("scriptName"), text("scriptFile"), text("script")};
    } catch (const nlohmann::json::exception&) {
        throw StudyError(file.string() + " is no plan");
    } catch (const fs::filesystem_error& error) { // such as a name of data that no file can have
        throw StudyError(file.string() + ": " + oneLine(error.code().message()));
    } catch (const UsageError& error) {
        throw StudyError(file.string() + ": " + oneLine(error.what()));
    }
    if (plan.chunks == 0 || plan.sets < plan.chunks || plan.sets > mostSets
        || plan.options.command != Command::Plan)
        throw StudyError(file.string() + " is no plan");
    plan.print = hexText(practice::hashText(content));
    return plan;
}

fs::path chunkPlace(const fs::path& plan, std::uint64_t chunk)
{
    std::string name = plan.string();
    if (name.ends_with(ending))
        name.resize(name.size() - ending.size());
    return name + '-' + std::to_string(chunk) + ".sqlite";
}

} // namespace lab
