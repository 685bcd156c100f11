#pragma once

#include <optional>

namespace corvane {

class LocalDB;

/// The source of the screens' data. Nothing uses it yet.
class DataSource {
public:
    virtual ~DataSource() = default;
};

struct LocalDataSource final : DataSource {
    explicit LocalDataSource(LocalDB& store)
        : db(store)
    {
    }
    LocalDB& db;
};

/// The data source of this machine, once the start sequence has set it.
struct AppData {
    std::optional<LocalDataSource> local;
};

}
