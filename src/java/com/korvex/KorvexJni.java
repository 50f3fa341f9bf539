package com.korvex;

import java.io.File;
import java.util.Arrays;

/** The native methods behind environments, models and batches, on plain handles. */
public final class KorvexJni {
    private KorvexJni() {}

    static { load(); }

    private static void load() {
        String name = "korvexjni130";
        String file = System.mapLibraryName(name);
        String path = System.getProperty("java.library.path");
        try {
            System.loadLibrary(name);
        } catch (UnsatisfiedLinkError e) {
            boolean found = Arrays.stream(path.split(File.pathSeparator))
                                .anyMatch(directory -> new File(directory, file).isFile());
            throw new UnsatisfiedLinkError(
                found ? file + " can't be loaded: " + e.getMessage() +
                            ". The solver, libkorvex130.so, must lie beside it or in a directory "
                            + "of the environment variable LD_LIBRARY_PATH (" +
                            System.getenv("LD_LIBRARY_PATH") + ")."
                      : file + " is in no directory of java.library.path (" + path +
                            "). Name its directory with java -Djava.library.path=DIRECTORY.");
        }
    }

    // Environments.

    public static native int createenv(long[] envslot, int major, int minor, int technical);

    public static native int loadenv(long[] envslot, String logfile, int major, int minor,
                                     int technical, int extra);

    public static native int startenv(long env);

    public static native long getenv(long model);

    public static native long getconcurrentenv(long model, int num);

    public static native void discardconcurrentenvs(long model);

    public static native long getmultiobjenv(long model, int index);

    public static native void discardmultiobjenvs(long model);

    public static native void freeenv(long env);

    public static native void version(int[] out);

    public static native int message(long env, String msg);

    public static native String geterrormsg(long env);

    // Parameters.

    public static native int getintparam(long env, String paramname, int[] value);

    public static native int getdblparam(long env, String paramname, double[] value);

    public static native int getstrparam(long env, String paramname, String[] value);

    public static native int getintparaminfo(long env, String paramname, int[] info);

    public static native int getdblparaminfo(long env, String paramname, double[] info);

    public static native int getstrparaminfo(long env, String paramname, String[] info);

    public static native int setintparam(long env, String paramname, int newvalue);

    public static native int setdblparam(long env, String paramname, double newvalue);

    public static native int setstrparam(long env, String paramname, String newvalue);

    public static native int setparam(long env, String paramname, String newvalue);

    public static native int resetparams(long env);

    public static native int writeparams(long env, String filename);

    public static native int readparams(long env, String filename);

    // Models: making, freeing.

    public static native long newmodel(int[] statusslot, long env, String name, int numvars,
                                       double[] obj, double[] lb, double[] ub, char[] types,
                                       String[] names);

    public static native int updatemodel(long model);

    public static native int reset(long model, int clearall);

    public static native int freemodel(long model);

    public static native long loadmodel(long env, String name, int numvars, int numconstrs,
                                        int objsense, double objcon, double[] obj, char[] senses,
                                        double[] rhs, int[] beg, int[] len, int[] ind, double[] val,
                                        double[] lb, double[] ub, char[] types, String[] names,
                                        String[] constrnames);

    // Derived models.

    public static native int copymodel(long model, long targetenv, long[] modelslot);

    public static native int relaxmodel(long model, long[] modelslot);

    public static native int fixedmodel(long model, long[] modelslot);

    public static native int presolvemodel(long model, long[] modelslot);

    public static native int dualmodel(long model, long[] modelslot);

    public static native int feasibility(long model, long[] modelslot);

    public static native int linearize(long model, long[] modelslot);

    public static native int singlescenariomodel(long model, long[] modelslot);

    public static native int feasrelax(long model, int penalty, int minrelax, double[] lbpen,
                                       double[] ubpen, double[] conpen, double[] resultslot);

    // Files.

    public static native long readmodel(long env, String filename);

    public static native int read(long model, String filename);

    public static native int write(long model, String filename);

    public static native int ismodelfile(String filename);

    public static native int isattrfile(String filename);

    public static native int getJSONSolution(long model, String[] textslot);

    // Variables and linear constraints.

    public static native int addvars(long model, int numvars, int numnz, int[] beg, int[] ind,
                                     double[] val, double[] obj, double[] lb, double[] ub,
                                     char[] types, String[] names);

    public static native int addconstrs(long model, int numconstrs, int numnz, int[] beg, int[] ind,
                                        double[] val, char[] senses, double[] lower, double[] rhs,
                                        String[] names);

    // Quadratic terms.

    public static native int addqpterms(long model, int numqnz, int[] qrow, int[] qcol,
                                        double[] qval);

    public static native int delq(long model);

    public static native int getq(long model, int[] numqnzslot, int[] qrow, int[] qcol,
                                  double[] qval);

    public static native int addqconstr(long model, int numlnz, int[] lind, double[] lval,
                                        int numqnz, int[] qrow, int[] qcol, double[] qval,
                                        char sense, double rhs, String name);

    public static native int getqconstr(long model, int qconstr, int[] numlnzslot, int[] lind,
                                        double[] lval, int[] numqnzslot, int[] qrow, int[] qcol,
                                        double[] qval);

    // Special ordered sets.

    public static native int addsos(long model, int numsos, int nummembers, int[] types, int[] beg,
                                    int[] ind, double[] weight);

    public static native int getsos(long model, int[] nummembersslot, int[] types, int[] beg,
                                    int[] ind, double[] weight, int start, int count);

    // Deletion and coefficients.

    public static native int delvars(long model, int num, int[] ind);

    public static native int delconstrs(long model, int num, int[] ind);

    public static native int delsos(long model, int num, int[] ind);

    public static native int delqconstrs(long model, int num, int[] ind);

    public static native int delgenconstrs(long model, int num, int[] ind);

    public static native int chgcoeffs(long model, int numchgs, int[] cind, int[] vind,
                                       double[] val);

    public static native int clean2(int[] lenslot, int[] ind, double[] val);

    public static native int clean3(int[] lenslot, int[] ind1, int[] ind2, double[] val);

    // Objectives.

    public static native int setobjective(long model, int objsense, int numlnz, int[] lind,
                                          double[] lval, int numqnz, int[] qrow, int[] qcol,
                                          double[] qval, double objcon);

    public static native int setobjectiven(long model, int index, int priority, String name,
                                           int numlnz, int[] lind, double[] lval, double constant,
                                           double weight, double abstol, double reltol);

    public static native int setpwlobj(long model, int var, int npts, double[] x, double[] y);

    public static native int getpwlobj(long model, int var, int[] nptsslot, double[] x, double[] y);

    // General constraints: adding.

    public static native int addgenconstrmax(long model, String name, int resvar, int nvars,
                                             int[] vars, double constant);

    public static native int addgenconstrmin(long model, String name, int resvar, int nvars,
                                             int[] vars, double constant);

    public static native int addgenconstrabs(long model, String name, int resvar, int argvar);

    public static native int addgenconstrand(long model, String name, int resvar, int nvars,
                                             int[] vars);

    public static native int addgenconstror(long model, String name, int resvar, int nvars,
                                            int[] vars);

    public static native int addgenconstrnorm(long model, String name, int resvar, int nvars,
                                              int[] vars, double which);

    public static native int addgenconstrindicator(long model, String name, int binvar, int binval,
                                                   int numlnz, int[] lind, double[] lval,
                                                   char sense, double rhs);

    public static native int addgenconstrpwl(long model, String name, int xvar, int yvar, int npts,
                                             double[] x, double[] y);

    public static native int addgenconstrpoly(long model, String name, int xvar, int yvar,
                                              int ncoef, double[] coefs, String options);

    public static native int addgenconstrexp(long model, String name, int xvar, int yvar,
                                             String options);

    public static native int addgenconstrexpa(long model, String name, int xvar, int yvar,
                                              String options, double base);

    public static native int addgenconstrlog(long model, String name, int xvar, int yvar,
                                             String options);

    public static native int addgenconstrloga(long model, String name, int xvar, int yvar,
                                              String options, double base);

    public static native int addgenconstrpow(long model, String name, int xvar, int yvar,
                                             String options, double exponent);

    public static native int addgenconstrsin(long model, String name, int xvar, int yvar,
                                             String options);

    public static native int addgenconstrcos(long model, String name, int xvar, int yvar,
                                             String options);

    public static native int addgenconstrtan(long model, String name, int xvar, int yvar,
                                             String options);

    public static native int addgenconstrlogistic(long model, String name, int xvar, int yvar,
                                                  String options);

    public static native int addgenconstrnl(long model, String name, int resvar, int nlcount,
                                            int[] opcodes, double[] data, int[] parents);

    // General constraints: reading back.

    public static native int getgenconstrmax(long model, int genconstr, int[] resvar, int[] nvars,
                                             int[] vars, double[] constant);

    public static native int getgenconstrmin(long model, int genconstr, int[] resvar, int[] nvars,
                                             int[] vars, double[] constant);

    public static native int getgenconstrabs(long model, int genconstr, int[] resvar, int[] argvar);

    public static native int getgenconstrand(long model, int genconstr, int[] resvar, int[] nvars,
                                             int[] vars);

    public static native int getgenconstror(long model, int genconstr, int[] resvar, int[] nvars,
                                            int[] vars);

    public static native int getgenconstrnorm(long model, int genconstr, int[] resvar, int[] nvars,
                                              int[] vars, double[] which);

    public static native int getgenconstrindicator(long model, int genconstr, int[] binvar,
                                                   int[] binval, int[] numlnz, int[] lind,
                                                   double[] lval, char[] sense, double[] rhs);

    public static native int getgenconstrpwl(long model, int genconstr, int[] xvar, int[] yvar,
                                             int[] npts, double[] x, double[] y);

    public static native int getgenconstrpoly(long model, int genconstr, int[] xvar, int[] yvar,
                                              int[] ncoef, double[] coefs);

    public static native int getgenconstrexp(long model, int genconstr, int[] xvar, int[] yvar);

    public static native int getgenconstrexpa(long model, int genconstr, int[] xvar, int[] yvar,
                                              double[] base);

    public static native int getgenconstrlog(long model, int genconstr, int[] xvar, int[] yvar);

    public static native int getgenconstrloga(long model, int genconstr, int[] xvar, int[] yvar,
                                              double[] base);

    public static native int getgenconstrpow(long model, int genconstr, int[] xvar, int[] yvar,
                                             double[] exponent);

    public static native int getgenconstrsin(long model, int genconstr, int[] xvar, int[] yvar);

    public static native int getgenconstrcos(long model, int genconstr, int[] xvar, int[] yvar);

    public static native int getgenconstrtan(long model, int genconstr, int[] xvar, int[] yvar);

    public static native int getgenconstrlogistic(long model, int genconstr, int[] xvar,
                                                  int[] yvar);

    public static native int getgenconstrnl(long model, int genconstr, int[] resvar, int[] nlcount,
                                            int[] opcodes, double[] data, int[] parents);

    // Attributes.

    public static native int getintattrlist(long model, String attrname, int start, int count,
                                            int[] ind, int[] values);

    public static native int setintattrlist(long model, String attrname, int start, int count,
                                            int[] ind, int[] values);

    public static native int getdblattrlist(long model, String attrname, int start, int count,
                                            int[] ind, double[] values);

    public static native int setdblattrlist(long model, String attrname, int start, int count,
                                            int[] ind, double[] values);

    public static native int getcharattrlist(long model, String attrname, int start, int count,
                                             int[] ind, char[] values);

    public static native int setcharattrlist(long model, String attrname, int start, int count,
                                             int[] ind, char[] values);

    public static native int getstrattrlist(long model, String attrname, int start, int count,
                                            int[] ind, String[] values);

    public static native int setstrattrlist(long model, String attrname, int start, int count,
                                            int[] ind, String[] values);

    public static native int getattrinfo(long model, String attrname, int[] info);

    public static native int prefetchattr(long model, String attrname);

    // Structure.

    public static native int getcoeff(long model, int constr, int var, double[] valslot);

    public static native int getconstrs(long model, int[] numnzslot, int[] beg, int[] ind,
                                        double[] val, int start, int count);

    public static native int getvars(long model, int[] numnzslot, int[] beg, int[] ind,
                                     double[] val, int start, int count);

    public static native int getconstrbyname(long model, String name, int[] indexslot);

    public static native int getvarbyname(long model, String name, int[] indexslot);

    // Runs.

    public static native int sync(long model, long record, String[] errorslot);

    public static native int tunemodel(long model);

    public static native int gettuneresult(long model, int index);

    // Inside a callback.

    public static native int cbgetintinfo(long cbdata, int where, int what, int[] resultslot);

    public static native int cbgetdblinfo(long cbdata, int where, int what, double[] resultslot);

    public static native String cbgetstrinfo(long cbdata, int where, int what);

    public static native int cbcutorlazy(long cbdata, int length, int[] ind, double[] val,
                                         char sense, double rhs, int cut);

    public static native int cbsolution(long cbdata, double[] solution, double[] objectiveslot);

    public static native int cbsetintparam(long cbdata, String paramname, int newvalue);

    public static native int cbsetdblparam(long cbdata, String paramname, double newvalue);

    public static native int cbsetstrparam(long cbdata, String paramname, String newvalue);

    public static native int proceed(long cbdata);

    public static native int stoponemultiobj(long model, long cbdata, int objnumber);

    public static native int terminate(long model);

    // Basis.

    public static native int fsolve(long model, int blen, int[] bind, double[] bval,
                                    int[] capacityslot, int[] xind, double[] xval);

    public static native int bsolve(long model, int blen, int[] bind, double[] bval,
                                    int[] capacityslot, int[] xind, double[] xval);

    public static native int binvcolj(long model, int j, int[] capacityslot, int[] xind,
                                      double[] xval);

    public static native int binvrowi(long model, int i, int[] capacityslot, int[] xind,
                                      double[] xval);

    public static native int basishead(long model, int[] headslot);

    // Batches.

    public static native int newbatch(long[] batchslot, long env, String batchid);

    public static native int freebatch(long batch);
}
