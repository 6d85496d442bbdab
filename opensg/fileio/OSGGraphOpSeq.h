/// A named sequence of graph operations that the scene file handler runs
/// on every scene it reads.
///
/// The sequence keeps OpenSG's form: it is built from a text such as
/// "Stripe() SharePtr(includes=Material,StateChunk)" and run on a root
/// node. The loaders already hand out indexed triangle lists with one
/// material per source material, shared between the geometries that use
/// it, so no operation changes the scene here: run() checks the root and
/// keeps the graph as it is. The operation names are kept so that an
/// application can read back and print what it set.
#ifndef _OSGGRAPHOPSEQ_H_
#define _OSGGRAPHOPSEQ_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGNode.h>

#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

/// One operation of a sequence: its name and its parameter text.
class GraphOp
{
  public:
    GraphOp(const std::string &name, const std::string &params = "");
    virtual ~GraphOp(void);

    const std::string &getName(void) const;
    const std::string &getParams(void) const;
    void               setParams(const std::string &params);

    /// Runs the operation on the graph under root; true on success.
    virtual bool traverse(NodePtr &root);

  private:
    std::string _name;
    std::string _params;
};

class GraphOpSeq
{
  public:
    GraphOpSeq(void);
    /// The operations of a text "Name(params) Name(params) ...".
    explicit GraphOpSeq(const std::string &params);
    virtual ~GraphOpSeq(void);

    /// Runs every operation in order; false when one fails or root is null.
    bool run(NodePtr &root);

    /// Takes over op (deleted with the sequence).
    void addGraphOp(GraphOp *op);
    bool removeGraphOp(GraphOp *op);
    void clearGraphOps(void);

    /// Replaces the operations by those of a text "Name(params) ...";
    /// false (and the sequence left empty) when the text is malformed.
    bool setGraphOps(const std::string &params);

    UInt32         size(void) const;
    const GraphOp *getGraphOp(UInt32 index) const;

  private:
    GraphOpSeq(const GraphOpSeq &);
    void operator=(const GraphOpSeq &);

    std::vector<GraphOp *> _graphOperators;
};

OSG_END_NAMESPACE

#endif
