#include "core/ConfigParser.h"

#include "core/Log.h"

#include <cctype>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <stdexcept>

namespace sim {

namespace {

using nlohmann::json;

constexpr std::pair<const char *, Profile> profiles[] = {{"headset", Profile::Headset},
    {"module", Profile::Module}, {"quad", Profile::Quad}, {"imu-only", Profile::ImuOnly},
    {"plain", Profile::Plain}, {"replay", Profile::Replay}};

/// One JSON object, whose keys are taken one by one; what is left over in the end is unknown.
class Reader {
public:
    Reader(const json &object, std::string where, std::vector<std::string> &unknown)
        : m_where(std::move(where))
        , m_unknown(unknown)
    {
        if (!object.is_object())
            throw std::runtime_error(m_where + " has to be an object");
        m_object = object;
    }
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;
    ~Reader()
    {
        for (const auto &[key, value] : m_object.items())
            m_unknown.push_back(m_where + " has an unknown key \"" + key + '"');
    }

    template <class T>
    void read(const char *key, T &value)
    {
        const json taken = take(key);
        if (taken.is_null())
            return;
        try {
            value = taken.get<T>();
        } catch (const json::exception &) {
            throw std::runtime_error(m_where + ": \"" + key + "\" has the wrong type");
        }
    }

    json take(const char *key)
    {
        const auto found = m_object.find(key);
        if (found == m_object.end())
            return nullptr;
        json value = *found;
        m_object.erase(found);
        return value;
    }

    const std::string &where() const { return m_where; }
    std::vector<std::string> &unknown() { return m_unknown; }

private:
    json m_object;
    std::string m_where;
    std::vector<std::string> &m_unknown;
};

StreamConfig readStream(Reader &reader)
{
    StreamConfig stream;
    reader.read("rate", stream.rate);
    reader.read("codec", stream.codec);
    std::vector<int> size;
    reader.read("size", size);
    if (!size.empty()) {
        if (size.size() != 2 || size[0] < 16 || size[1] < 16 || size[0] > 8192 || size[1] > 8192)
            throw std::runtime_error(reader.where() + ": \"size\" is [width, height], 16 to 8192 each");
        stream.width = size[0];
        stream.height = size[1];
    }
    if (stream.rate < 0 || stream.rate > 10000)
        throw std::runtime_error(reader.where() + ": \"rate\" is 0 to 10000 per second");
    return stream;
}

StreamFaults readStreamFaults(Reader &reader)
{
    StreamFaults faults;
    reader.read("dropEvery", faults.dropEvery);
    reader.read("lateEvery", faults.lateEvery);
    reader.read("lateMs", faults.lateMs);
    reader.read("shortEvery", faults.shortEvery);
    reader.read("nullEvery", faults.nullEvery);
    reader.read("zeroEvery", faults.zeroEvery);
    reader.read("emptyEvery", faults.emptyEvery);
    reader.read("resizeEvery", faults.resizeEvery);
    reader.read("unknownEvery", faults.unknownEvery);
    reader.read("stallAfter", faults.stallAfter);
    reader.read("stallFor", faults.stallFor);
    reader.read("loseAfter", faults.loseAfter);
    reader.read("loseFor", faults.loseFor);
    return faults;
}

Faults readFaults(Reader &reader)
{
    Faults faults;
    reader.read("refuse", faults.refuse);
    reader.read("throwInfo", faults.throwInfo);
    reader.read("hidDelayMs", faults.hidDelayMs);
    reader.read("vanishAfter", faults.vanishAfter);
    reader.read("returnAfter", faults.returnAfter);
    reader.read("damageMap", faults.damageMap);
    const json streams = reader.take("streams");
    for (const auto &[name, value] : streams.items()) {
        Reader stream(value, reader.where() + '.' + name, reader.unknown());
        faults.streams[name] = readStreamFaults(stream);
    }
    return faults;
}

Profile readProfile(Reader &reader, const std::string &folder)
{
    std::string name;
    reader.read("profile", name);
    if (name.empty())
        return folder.empty() ? Profile::Headset : Profile::Replay;
    const auto profile = profileByName(name);
    if (!profile)
        throw std::runtime_error(reader.where() + ": there is no profile \"" + name + '"');
    return *profile;
}

DeviceConfig readDevice(Reader &reader)
{
    DeviceConfig device;
    reader.read("folder", device.folder);
    device.profile = readProfile(reader, device.folder);
    reader.read("uuid", device.uuid);
    reader.read("present", device.present);
    reader.read("version", device.version);
    reader.read("info", device.info);
    reader.read("seed", device.seed);
    const json streams = reader.take("streams");
    for (const auto &[name, value] : streams.items()) {
        Reader stream(value, reader.where() + ", streams." + name, reader.unknown());
        device.streams[name] = readStream(stream);
    }
    const json faults = reader.take("faults");
    if (!faults.is_null()) {
        Reader faultReader(faults, reader.where() + ", faults", reader.unknown());
        device.faults = readFaults(faultReader);
    }
    if (device.profile == Profile::Replay && device.folder.empty())
        throw std::runtime_error(reader.where() + ": the profile replay needs a \"folder\"");
    return device;
}

void checkUuids(const std::vector<DeviceConfig> &devices)
{
    std::set<std::string> seen;
    for (const DeviceConfig &device : devices) {
        if (!seen.insert(device.uuid).second)
            throw std::runtime_error("two devices have the uuid \"" + device.uuid + '"');
    }
}

json parseText(const std::string &text)
{
    try {
        return json::parse(text, nullptr, true, true);
    } catch (const json::exception &error) {
        throw std::runtime_error(error.what());
    }
}

std::vector<std::string> split(const std::string &text, char separator)
{
    std::vector<std::string> parts;
    std::stringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        if (!part.empty())
            parts.push_back(part);
    }
    return parts;
}

void addProfile(std::vector<DeviceConfig> &devices, const std::string &name)
{
    const auto profile = profileByName(name);
    if (!profile) {
        complain("QVSIM: there is no profile \"" + name + '"');
    } else if (*profile == Profile::Replay) {
        complain("QVSIM: the profile replay takes its folder from QVSIM_REPLAY");
    } else {
        devices.emplace_back();
        devices.back().profile = *profile;
    }
}

std::string serial(int number)
{
    return "24A0" + std::to_string(1000 + number).substr(1);
}

/// The recording's own name, without what an id can't have; empty for the root of the disk.
std::string recordingName(const std::string &folder)
{
    std::error_code error;
    auto path = std::filesystem::absolute(folder, error).lexically_normal();
    if (!path.has_filename())
        path = path.parent_path();
    // What every recording of its layout is called tells nothing.
    const bool isFile = path.extension() == ".txt" || path.extension() == ".csv";
    if (isFile)
        path.replace_extension();
    if (path.filename() == "mav0" || (isFile && path.filename() == "groundtruth"))
        path = path.parent_path();
    std::string name = path.filename().string();
    for (char &letter : name) {
        const auto code = static_cast<unsigned char>(letter);
        if (code < 0x80 && std::isalnum(code) == 0 && std::strchr("-_.", letter) == nullptr)
            letter = '_';
    }
    return name;
}

/// What a device without an id may be called, by the attempts that it took to find a free name.
std::string candidate(const std::string &prefix, const std::string &recording, int number, int attempt)
{
    if (recording.empty())
        return prefix + serial(number + attempt - 1);
    return attempt == 1 ? prefix + recording : prefix + recording + '-' + std::to_string(attempt);
}

} // namespace

std::optional<Profile> profileByName(const std::string &name)
{
    for (const auto &[known, profile] : profiles) {
        if (name == known)
            return profile;
    }
    return std::nullopt;
}

const char *profileName(Profile profile)
{
    for (const auto &[name, known] : profiles) {
        if (profile == known)
            return name;
    }
    return "";
}

void nameDevices(std::vector<DeviceConfig> &devices)
{
    static const std::map<Profile, std::string> prefixes = {{Profile::Headset, "QVH2"},
        {Profile::Module, "QVM1"}, {Profile::Quad, "QVQ4"}, {Profile::ImuOnly, "QVI1"},
        {Profile::Plain, "QVP1"}, {Profile::Replay, "QVREC"}};
    std::set<std::string> taken;
    for (const DeviceConfig &device : devices)
        taken.insert(device.uuid);
    std::map<Profile, int> counts;
    for (DeviceConfig &device : devices) {
        const int number = ++counts[device.profile];
        if (!device.uuid.empty())
            continue;
        const std::string prefix = prefixes.at(device.profile) + '-';
        const std::string recording =
            device.profile == Profile::Replay ? recordingName(device.folder) : std::string();
        int attempt = 0;
        do
            device.uuid = candidate(prefix, recording, number, ++attempt);
        while (!taken.insert(device.uuid).second);
    }
}

std::vector<DeviceConfig> parseConfig(const std::string &text, std::vector<std::string> &unknown)
{
    const json document = parseText(text);
    json list = document;
    if (document.is_object()) {
        Reader top(document, "the file", unknown);
        list = top.take("devices");
    }
    if (!list.is_array())
        throw std::runtime_error("there is no list of devices");
    std::vector<DeviceConfig> devices;
    for (const json &entry : list) {
        Reader reader(entry, "device " + std::to_string(devices.size() + 1), unknown);
        devices.push_back(readDevice(reader));
    }
    nameDevices(devices);
    checkUuids(devices);
    return devices;
}

std::vector<DeviceConfig> parseShortForm(const std::string &profileList, const std::string &folders)
{
    std::vector<DeviceConfig> devices;
    for (const std::string &name : split(profileList, ','))
        addProfile(devices, name);
    for (const std::string &folder : split(folders, ':')) {
        devices.emplace_back();
        devices.back().profile = Profile::Replay;
        devices.back().folder = folder;
    }
    if (profileList.empty() && folders.empty())
        devices.emplace_back();
    nameDevices(devices);
    return devices;
}

} // namespace sim
