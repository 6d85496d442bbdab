#include <OpenSG/OSGGraphOpSeq.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <cctype>

OSG_BEGIN_NAMESPACE

GraphOp::GraphOp(const std::string &name, const std::string &params)
    : _name(name), _params(params)
{
}

GraphOp::~GraphOp(void)
{
}

const std::string &GraphOp::getName(void) const
{
    return _name;
}

const std::string &GraphOp::getParams(void) const
{
    return _params;
}

void GraphOp::setParams(const std::string &params)
{
    _params = params;
}

bool GraphOp::traverse(NodePtr &root)
{
    return root != NullFC;
}

GraphOpSeq::GraphOpSeq(void) : _graphOperators()
{
}

GraphOpSeq::GraphOpSeq(const std::string &params) : _graphOperators()
{
    setGraphOps(params);
}

GraphOpSeq::~GraphOpSeq(void)
{
    clearGraphOps();
}

bool GraphOpSeq::run(NodePtr &root)
{
    if(root == NullFC)
        return false;

    for(GraphOp *op : _graphOperators)
    {
        if(!op->traverse(root))
        {
            SWARNING << "GraphOpSeq: " << op->getName() << " failed" << std::endl;
            return false;
        }
    }
    return true;
}

void GraphOpSeq::addGraphOp(GraphOp *op)
{
    if(op != NULL)
        _graphOperators.push_back(op);
}

bool GraphOpSeq::removeGraphOp(GraphOp *op)
{
    std::vector<GraphOp *>::iterator it =
        std::find(_graphOperators.begin(), _graphOperators.end(), op);

    if(it == _graphOperators.end())
        return false;

    delete *it;
    _graphOperators.erase(it);
    return true;
}

void GraphOpSeq::clearGraphOps(void)
{
    for(GraphOp *op : _graphOperators)
        delete op;
    _graphOperators.clear();
}

bool GraphOpSeq::setGraphOps(const std::string &params)
{
    clearGraphOps();

    size_t pos = 0;

    while(true)
    {
        while(pos < params.size() && std::isspace(UInt8(params[pos])))
            ++pos;
        if(pos == params.size())
            return true;

        const size_t open = params.find('(', pos);
        const size_t close =
            open == std::string::npos ? open : params.find(')', open);
        std::string name =
            params.substr(pos, open == std::string::npos ? open : open - pos);

        name.erase(std::remove_if(name.begin(), name.end(),
                                  [](char c) { return std::isspace(UInt8(c)); }),
                   name.end());

        if(close == std::string::npos || name.empty())
        {
            SWARNING << "GraphOpSeq: malformed operation list '" << params
                     << "'" << std::endl;
            clearGraphOps();
            return false;
        }

        addGraphOp(new GraphOp(name, params.substr(open + 1, close - open - 1)));
        pos = close + 1;
    }
}

UInt32 GraphOpSeq::size(void) const
{
    return UInt32(_graphOperators.size());
}

const GraphOp *GraphOpSeq::getGraphOp(UInt32 index) const
{
    return index < _graphOperators.size() ? _graphOperators[index] : NULL;
}

OSG_END_NAMESPACE
