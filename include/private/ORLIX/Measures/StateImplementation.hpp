#pragma once

#include <ORLIX/Measures/State.hpp>

#include <framework/process/StateModel.hpp>

namespace orlix::measures
{

/// The model behind the public state of a measure.
template <class M>
struct ModelOf;

template <class M>
using Model = imaproc::StateModel<typename ModelOf<M>::Type>;

template <class M>
State<M>::State(const Options& options) : model_{std::make_unique<Model<M>>(options)}
{
    if constexpr (requires { options.mask; }) {
        if (options.mask) {
            throw MeasureException{"a state is given a mask with each piece, not in its options", ORLIX_HERE};
        }
    }
}
template <class M>
State<M>::State(std::unique_ptr<imaproc::BaseMeasureState> model) : model_{std::move(model)}
{}
template <class M>
State<M>::State(const State& other) : model_{other.model_->clone()}
{}
template <class M>
State<M>& State<M>::operator=(State other) noexcept
{
    model_ = std::move(other.model_);
    return *this;
}
template <class M>
void State<M>::addImages(const std::vector<ImageView>& images, const ImageView& mask, const Position& offset,
                         const std::optional<Extent>& core)
{
    model_->add(images, mask, offset, core, {});
}
template <class M>
std::uint64_t State<M>::getMargin() const
{
    return model_->getMargin();
}
template <class M>
void State<M>::merge(const State& other)
{
    model_->merge(*other.model_);
}
template <class M>
bool State<M>::needsPass() const
{
    return model_->needsPass();
}
template <class M>
bool State<M>::nextPass()
{
    return model_->nextPass();
}
template <class M>
Results<typename State<M>::Result> State<M>::finish() const
{
    return Results<Result>{static_cast<const Model<M>&>(*model_).finish()};
}
template <class M>
std::string State<M>::toBytes() const
{
    return model_->toBytes();
}
template <class M>
State<M> State<M>::fromBytes(std::string_view bytes)
{
    return State{std::make_unique<Model<M>>(Model<M>::fromBytes(bytes))};
}

/// The measure of images that are there as a whole.
template <class M>
Results<typename M::Result> measure(const typename M::Options& options, const std::vector<ImageView>& images,
                                    const ImageView& mask)
{
    Model<M> model{options};
    do {
        model.add(images, mask, {}, {}, {});
    } while (model.nextPass());
    return Results<typename M::Result>{model.finish()};
}

} // namespace orlix::measures
