#include "Platform/Linux/Audio/PulseApplications.h"

#include "Platform/Linux/Audio/PulseConnection.h"

#include <algorithm>
#include <unistd.h>

namespace corvane {

struct PulseApplications::State final : PulseConnection {
    using Answer = std::function<void(const QList<SoundApplication>&)>;

    explicit State(Answer given)
        : answer(std::move(given))
    {
        if (!connect(PA_CONTEXT_NOAUTOSPAWN))
            tell();
    }
    ~State() override { close(); }

    void closing() override { answer = nullptr; }
    void contextChanged() override;
    void add(const pa_proplist* properties, bool SoundApplication::* role);
    void tell();

    Answer answer;
    QList<SoundApplication> applications;
};

void PulseApplications::State::contextChanged()
{
    const pa_context_state_t now = pa_context_get_state(context);
    if (now == PA_CONTEXT_READY) {
        pa_operation_unref(pa_context_get_sink_input_info_list(
            context,
            [](pa_context*, const pa_sink_input_info* input, int, void* state) {
                if (input && !input->corked)
                    static_cast<State*>(state)->add(input->proplist, &SoundApplication::plays);
            },
            this));
        pa_operation_unref(pa_context_get_source_output_info_list(
            context,
            [](pa_context*, const pa_source_output_info* output, int, void* given) {
                auto* const state = static_cast<State*>(given);
                if (!output)
                    state->tell(); // answers arrive in the order of the requests
                else if (!output->corked)
                    state->add(output->proplist, &SoundApplication::records);
            },
            this));
    } else if (!PA_CONTEXT_IS_GOOD(now)) {
        tell();
    }
}

void PulseApplications::State::add(const pa_proplist* properties, bool SoundApplication::* role)
{
    const auto value = [properties](const char* key) {
        return QString::fromUtf8(pa_proplist_gets(properties, key));
    };
    const QString binary = value(PA_PROP_APPLICATION_PROCESS_BINARY);
    if (binary.isEmpty() || value(PA_PROP_APPLICATION_PROCESS_ID) == QString::number(::getpid()))
        return; // the server's own, or ours
    auto found = std::ranges::find(applications, binary, &SoundApplication::binary);
    if (found == applications.end())
        found = applications.insert(found, { .binary = binary, .name = value(PA_PROP_APPLICATION_NAME) });
    (*found).*role = true;
}

void PulseApplications::State::tell()
{
    if (const Answer told = std::exchange(answer, nullptr))
        told(applications);
}

PulseApplications::PulseApplications(std::function<void(const QList<SoundApplication>&)> answer)
    : m_state(std::make_unique<State>(std::move(answer)))
{
}

PulseApplications::~PulseApplications() = default;

}
